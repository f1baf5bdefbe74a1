#include "server/http_connection.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <netdb.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {
namespace {

constexpr std::uint64_t maximumHeadBytes = 32768;
/// How long an idle connection is let be when others wait: the first request may be on its way.
constexpr std::chrono::milliseconds idleGrace{500};
/// How long and how much of a refused upload is still read, so that the client, which is busy
/// sending it, gets to see the answer.
constexpr std::chrono::seconds discardTime{2};
constexpr std::uint64_t maximumDiscardedBytes = std::uint64_t{256} << 20U;

using Name = int (*)(int, sockaddr*, socklen_t*);

void getAddress(Name name, int socket, std::string& ip, int& port) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    if (name(socket, generic, &length) != 0 ||
        getnameinfo(generic, length, host.data(), host.size(), service.data(), service.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        return;
    ip = host.data();
    port = std::atoi(service.data());
}

}  // namespace

HttpConnection::HttpConnection(int socket, Events events, const ClientPatience& patience)
    : m_socket(socket), m_events(events), m_patience(patience) {}

HttpConnection::~HttpConnection() {
    shutdown(m_socket, SHUT_WR);
    if (m_progress != Progress::Idle && !isRequestComplete()) discardInput();
    close(m_socket);
}

bool HttpConnection::waitForRequest() {
    m_progress = Progress::Idle;
    if (m_bufferBegin == m_bufferEnd && !(waitWhileIdle() && fillBuffer())) return false;
    m_progress = Progress::Head;
    m_isAnswering = false;
    m_readable = maximumHeadBytes;
    allow(m_patience.head);
    return true;
}

void HttpConnection::expectBody(std::uint64_t bytes) {
    m_progress = Progress::Body;
    m_readable = bytes;
    allow(m_patience.transfer);
}

void HttpConnection::beginAnswer() {
    m_isAnswering = true;
    allow(m_patience.transfer);
}

bool HttpConnection::isRequestComplete() const {
    return m_progress == Progress::Body && m_readable == 0;
}

bool HttpConnection::hasClientLeft() const {
    if (m_bufferBegin < m_bufferEnd) return false;
    char byte = 0;
    const ssize_t count = recv(m_socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
}

bool HttpConnection::is_readable() const {
    return m_bufferBegin < m_bufferEnd || waitWhileBusy(POLLIN);
}

bool HttpConnection::is_writable() const {
    return waitWhileBusy(POLLOUT);
}

ssize_t HttpConnection::read(char* bytes, std::size_t size) {
    if (m_readable == 0) return -1;
    if (m_bufferBegin == m_bufferEnd && !receive()) return -1;
    const std::size_t count = std::min<std::uint64_t>(
        {std::uint64_t{size}, std::uint64_t{m_bufferEnd - m_bufferBegin}, m_readable});
    std::memcpy(bytes, &m_buffer[m_bufferBegin], count);
    m_bufferBegin += count;
    m_readable -= count;
    if (m_progress == Progress::Body) allowMore(count);
    return static_cast<ssize_t>(count);
}

ssize_t HttpConnection::write(const char* bytes, std::size_t size) {
    if (!is_writable()) return -1;
    const ssize_t count = send(m_socket, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (m_isAnswering && count > 0) allowMore(static_cast<std::size_t>(count));
    return count;
}

void HttpConnection::get_remote_ip_and_port(std::string& ip, int& port) const {
    getAddress(&getpeername, m_socket, ip, port);
}

void HttpConnection::get_local_ip_and_port(std::string& ip, int& port) const {
    getAddress(&getsockname, m_socket, ip, port);
}

bool HttpConnection::waitFor(short event, std::chrono::milliseconds limit) const {
    std::array<pollfd, 2> descriptors{{{m_socket, event, 0}, {m_events.stop, POLLIN, 0}}};
    const int ready = poll(descriptors.data(), descriptors.size(), static_cast<int>(limit.count()));
    return ready > 0 && (descriptors[0].revents & event) != 0;
}

bool HttpConnection::waitWhileIdle() const {
    const auto grace = std::min(m_patience.idle, idleGrace);
    if (waitFor(POLLIN, grace)) return true;
    const auto end = Clock::now() + m_patience.idle - grace;
    while (true) {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (rest.count() <= 0) return false;
        std::array<pollfd, 3> descriptors{
            {{m_socket, POLLIN, 0}, {m_events.stop, POLLIN, 0}, {m_events.crowded, POLLIN, 0}}};
        if (poll(descriptors.data(), descriptors.size(), static_cast<int>(rest.count())) <= 0)
            return false;
        if (descriptors[1].revents != 0) return false;
        if (descriptors[0].revents != 0) return (descriptors[0].revents & POLLIN) != 0;
        eventfd_t taken = 0;
        if (eventfd_read(m_events.crowded, &taken) == 0) return false;
    }
}

bool HttpConnection::waitWhileBusy(short event) const {
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now());
    return rest.count() > 0 && waitFor(event, std::min(m_patience.stall, rest));
}

void HttpConnection::allowMore(std::size_t movedBytes) {
    m_deadline = m_patience.extended(m_deadline, movedBytes, Clock::now());
}

bool HttpConnection::receive() {
    // Of those who send fast, most is there already.
    errno = 0;
    if (fillBuffer()) return true;
    return errno == EAGAIN && waitWhileBusy(POLLIN) && fillBuffer();
}

bool HttpConnection::fillBuffer() {
    const ssize_t count = recv(m_socket, m_buffer.data(), m_buffer.size(), MSG_DONTWAIT);
    m_bufferBegin = 0;
    m_bufferEnd = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    return count > 0;
}

void HttpConnection::discardInput() const {
    std::array<char, 65536> bytes{};
    const auto deadline = std::chrono::steady_clock::now() + discardTime;
    for (std::uint64_t discarded = 0; discarded < maximumDiscardedBytes;) {
        const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (rest.count() <= 0 || !waitFor(POLLIN, rest)) return;
        const ssize_t count = recv(m_socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (count <= 0) return;
        discarded += static_cast<std::uint64_t>(count);
    }
}

}  // namespace quietlark
