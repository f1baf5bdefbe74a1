#include "platform/linux/x11/pasteboard/x11_pasteboard_thread.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {

namespace {

// Beyond the limits for other programs: what the X server itself may take to answer.
constexpr std::chrono::seconds serverPatience{2};

int millisecondsUntil(std::optional<X11PasteboardSession::Clock::time_point> time) {
    if (!time) return -1;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(*time - X11PasteboardSession::Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

}  // namespace

X11PasteboardThread::X11PasteboardThread(const QByteArray& display, X11PasteboardLimits limits)
    : m_limits(limits),
      m_session(display, limits),
      m_wakeFileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_thread([this] { run(); }) {}

X11PasteboardThread::~X11PasteboardThread() {
    {
        std::unique_lock lock(m_mutex);
        m_isQuitting = true;
        wake();
        const auto patience = m_limits.snapshot + m_limits.handover + serverPatience;
        const bool hasEnded = m_ended.wait_for(lock, patience, [this] { return m_hasEnded; });
        // A server that hangs keeps the thread in a call; without a connection the call returns.
        if (!hasEnded) shutdown(m_session.fileDescriptor(), SHUT_RDWR);
    }
    m_thread.join();
    close(m_wakeFileDescriptor);
}

void X11PasteboardThread::order(Command command) {
    const std::lock_guard lock(m_mutex);
    m_orders.push_back(std::move(command));
    wake();
}

void X11PasteboardThread::run() {
    // Signals are the main thread's, and SIGPIPE, when the X server has gone, is nobody's.
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    serve();
    {
        const std::lock_guard lock(m_mutex);
        m_hasEnded = true;
    }
    m_ended.notify_one();
}

void X11PasteboardThread::serve() {
    for (;;) {
        const auto next = m_session.processTime(X11PasteboardSession::Clock::now());
        if (m_session.hasQuit()) break;
        const bool hasBegun = carryOutNext();
        // Events last: whatever was sent may have brought some in, and then none would wake us.
        const bool hasReceived = m_session.processEvents();
        if (!hasBegun && !hasReceived) wait(next);
    }
    m_session.synchronize();
}

bool X11PasteboardThread::carryOutNext() {
    if (m_session.isQuitting()) return false;
    // Not under the lock: what the session does may wait for the X server.
    if (isQuitting()) m_session.stopReading();
    if (m_session.isBusy()) return false;
    const auto order = nextOrder();
    if (order) order(m_session);
    return order != nullptr;
}

bool X11PasteboardThread::isQuitting() {
    const std::lock_guard lock(m_mutex);
    return m_isQuitting;
}

X11PasteboardThread::Command X11PasteboardThread::nextOrder() {
    const std::lock_guard lock(m_mutex);
    if (!m_orders.empty()) {
        auto order = std::move(m_orders.front());
        m_orders.pop_front();
        return order;
    }
    if (!m_isQuitting) return nullptr;
    return [](X11PasteboardSession& session) { session.quit(); };
}

void X11PasteboardThread::wait(std::optional<X11PasteboardSession::Clock::time_point> until) {
    std::array<pollfd, 2> sources{
        {{m_wakeFileDescriptor, POLLIN, 0},
         {m_session.isConnected() ? m_session.fileDescriptor() : -1, POLLIN, 0}}};
    poll(sources.data(), sources.size(), millisecondsUntil(until));
    std::uint64_t wakes = 0;
    if (sources[0].revents != 0) (void)!read(m_wakeFileDescriptor, &wakes, sizeof wakes);
}

void X11PasteboardThread::wake() {
    const std::uint64_t once = 1;
    (void)!write(m_wakeFileDescriptor, &once, sizeof once);
}

}  // namespace quietlark
