#include "server/avahi_announcer.h"

#include <chrono>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "server/avahi_session.h"

namespace quietlark {
namespace {

/// Before the bus, or a daemon that does not do as it is told, is tried again.
constexpr std::chrono::milliseconds betweenTries{5000};

void waitForWake(int wakeEvent) {
    pollfd descriptor{wakeEvent, POLLIN, 0};
    eventfd_t ignored = 0;
    if (poll(&descriptor, 1, static_cast<int>(betweenTries.count())) > 0)
        eventfd_read(wakeEvent, &ignored);
}

}  // namespace

AvahiAnnouncer::AvahiAnnouncer(Log& log)
    : m_log(log),
      m_wakeEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_thread([this] { run(); }) {}

AvahiAnnouncer::~AvahiAnnouncer() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    wake();
    m_thread.join();
    close(m_wakeEvent);
}

void AvahiAnnouncer::announce(const ServiceAnnouncement& announcement) {
    {
        const std::lock_guard lock(m_mutex);
        m_wanted = announcement;
    }
    wake();
}

void AvahiAnnouncer::withdraw() {
    {
        const std::lock_guard lock(m_mutex);
        m_wanted.reset();
    }
    wake();
}

void AvahiAnnouncer::run() {
    std::unique_ptr<AvahiSession> session;
    while (!isEnding()) {
        if (!session) session = AvahiSession::open(m_log);
        if (session) {
            const bool isDone = session->update(wanted());
            const auto limit = isDone ? std::nullopt : std::optional(betweenTries);
            if (!session->wait(m_wakeEvent, limit)) session.reset();
        }
        if (!session) waitForWake(m_wakeEvent);
    }
}

std::optional<ServiceAnnouncement> AvahiAnnouncer::wanted() {
    const std::lock_guard lock(m_mutex);
    return m_wanted;
}

bool AvahiAnnouncer::isEnding() {
    const std::lock_guard lock(m_mutex);
    return m_isEnding;
}

void AvahiAnnouncer::wake() const {
    eventfd_write(m_wakeEvent, 1);
}

}  // namespace quietlark
