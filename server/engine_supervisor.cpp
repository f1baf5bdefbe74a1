#include "server/engine_supervisor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <unistd.h>

#include "server/text_forms.h"

namespace quietlark {
namespace {

using std::chrono::milliseconds;

constexpr int mostFailedStarts = 3;
constexpr int mostMissedProbes = 3;
constexpr milliseconds betweenStartProbes{50};
constexpr std::size_t longestLine = 500;

/// A port that nobody has, at least for a moment.
int freePort() {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    bind(probe, generic, length);
    getsockname(probe, generic, &length);
    close(probe);
    return ntohs(address.sin_port);
}

/// A path that nobody can guess.
std::string secretPath() {
    std::array<unsigned char, 16> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return "";
    std::string path = "/";
    for (const unsigned char byte : bytes)
        path += hexadecimal(byte);
    return path;
}

}  // namespace

EngineSupervisor::EngineSupervisor(Program program, Times times,
                                   std::function<void(bool)> onReadyChange, Log& log)
    : m_program(std::move(program)),
      m_times(times),
      m_onReadyChange(std::move(onReadyChange)),
      m_log(log),
      m_wakeEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_thread([this] { run(); }) {}

EngineSupervisor::~EngineSupervisor() {
    stop();
    m_thread.join();
    close(m_wakeEvent);
}

tl::expected<EngineSupervisor::Child, EngineError> EngineSupervisor::child(
    Clock::time_point deadline) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_until(lock, deadline, [this] {
        return m_child || m_isStopping || m_failedStarts >= mostFailedStarts;
    });
    if (m_isStopping) return tl::unexpected(EngineError::Stopping);
    if (!m_child) return tl::unexpected(EngineError::Unavailable);
    return *m_child;
}

bool EngineSupervisor::isReady() const {
    const std::lock_guard lock(m_mutex);
    return m_child.has_value();
}

void EngineSupervisor::replace(const Child& child) {
    const std::lock_guard lock(m_mutex);
    if (!m_child || m_child->number != child.number) return;
    m_child.reset();
    m_isReplacing = true;
    wake();
}

void EngineSupervisor::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
        wake();
    }
    m_changed.notify_all();
}

bool EngineSupervisor::isStopping() const {
    const std::lock_guard lock(m_mutex);
    return m_isStopping;
}

void EngineSupervisor::run() {
    milliseconds rest = m_times.firstPause;
    bool goesOn = true;
    while (goesOn) {
        const bool wasReady = runChild();
        if (!wasReady) countFailedStart();
        setReady(std::nullopt);
        if (wasReady) rest = m_times.firstPause;
        goesOn = pause(rest);
        rest = std::min(2 * rest, m_times.longestPause);
    }
}

bool EngineSupervisor::runChild() {
    const Child child{.address = {.port = freePort(), .path = secretPath()}, .number = ++m_number};
    auto arguments = m_program.arguments;
    arguments.insert(arguments.end(),
                     {"--host", "127.0.0.1", "--port", std::to_string(child.address.port),
                      "--request-path", child.address.path});
    auto process = EngineProcess::start(m_program.path, arguments);
    if (!process) {
        m_log.write(LogLevel::Error, m_program.path + " cannot be started: " + process.error());
        return false;
    }
    m_line.clear();
    m_hasOutput = true;
    const WhisperClient client(child.address, m_log);
    const bool isReady = becomesReady(*process, client);
    if (!isReady) return false;
    setReady(child);
    superviseReady(*process, client);
    return true;
}

bool EngineSupervisor::becomesReady(EngineProcess& process, const WhisperClient& client) {
    const auto end = Clock::now() + m_times.start;
    while (waitFor(process, betweenStartProbes) == Event::Nothing) {
        if (client.health(m_times.probe) == WhisperClient::Health::Ready) return true;
        if (Clock::now() < end) continue;
        m_log.write(LogLevel::Error, m_program.path + " did not become ready");
        return false;
    }
    return false;
}

void EngineSupervisor::superviseReady(EngineProcess& process, const WhisperClient& client) {
    m_log.write(LogLevel::Info, m_program.path + " is ready");
    int missed = 0;
    while (waitFor(process, m_times.probeEvery) == Event::Nothing) {
        const bool answers = client.health(m_times.probe) != WhisperClient::Health::NoAnswer;
        missed = answers ? 0 : missed + 1;
        if (missed < mostMissedProbes) continue;
        m_log.write(LogLevel::Error, m_program.path + " does not answer");
        return;
    }
}

EngineSupervisor::Event EngineSupervisor::waitFor(EngineProcess& process, milliseconds time) {
    const auto end = Clock::now() + time;
    while (true) {
        {
            const std::lock_guard lock(m_mutex);
            if (m_isStopping) return Event::Stopped;
            if (m_isReplacing) return Event::Replaced;
        }
        const auto rest = std::chrono::ceil<milliseconds>(end - Clock::now());
        if (rest.count() <= 0) return Event::Nothing;
        std::array<pollfd, 3> descriptors{{{m_hasOutput ? process.output() : -1, POLLIN, 0},
                                           {process.end(), POLLIN, 0},
                                           {m_wakeEvent, POLLIN, 0}}};
        poll(descriptors.data(), descriptors.size(), static_cast<int>(rest.count()));
        eventfd_t ignored = 0;
        if (descriptors[2].revents != 0) eventfd_read(m_wakeEvent, &ignored);
        if (descriptors[0].revents != 0) readOutput(process);
        if (descriptors[1].revents == 0) continue;
        m_log.write(LogLevel::Error, m_program.path + " " + process.wait());
        return Event::Ended;
    }
}

/// False when the program stops meanwhile.
bool EngineSupervisor::pause(milliseconds time) {
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, time, [this] { return m_isStopping; });
}

void EngineSupervisor::readOutput(const EngineProcess& process) {
    std::array<char, 4096> bytes{};
    const ssize_t count = read(process.output(), bytes.data(), bytes.size());
    m_hasOutput = count > 0 || (count < 0 && errno == EAGAIN);
    if (count <= 0) return;
    for (const char character : std::string_view(bytes.data(), static_cast<std::size_t>(count))) {
        if (character != '\n') {
            if (m_line.size() < longestLine) m_line += character;
            continue;
        }
        if (!m_line.empty()) m_log.write(LogLevel::Info, "whisper.cpp: " + m_line);
        m_line.clear();
    }
}

void EngineSupervisor::setReady(const std::optional<Child>& child) {
    {
        const std::lock_guard lock(m_mutex);
        m_child = child;
        if (child) m_failedStarts = 0;
        m_isReplacing = false;
    }
    m_changed.notify_all();
    m_onReadyChange(child.has_value());
}

void EngineSupervisor::countFailedStart() {
    const std::lock_guard lock(m_mutex);
    ++m_failedStarts;
}

void EngineSupervisor::wake() const {
    eventfd_write(m_wakeEvent, 1);
}

}  // namespace quietlark
