#include "peers/x_proxy.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quietlark {

namespace {

constexpr std::uint8_t queryExtensionOpcode = 98;
constexpr std::size_t queryExtensionNameOffset = 8;

/// A socket at, or connected to, a display's address in Linux's abstract namespace; -1 when that
/// cannot be had.
int socketOfDisplay(const QByteArray& number, decltype(&::connect) attach) {
    const QByteArray path = "/tmp/.X11-unix/X" + number;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path + 1);
    const auto size = offsetof(sockaddr_un, sun_path) + 1 + static_cast<std::size_t>(path.size());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (attach(socket, reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(size)) ==
        0) {
        return socket;
    }
    ::close(socket);
    return -1;
}

void writeAll(int socket, const std::uint8_t* data, std::size_t size) {
    while (size > 0) {
        const auto written = ::send(socket, data, size, MSG_NOSIGNAL);
        if (written <= 0) return;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

std::size_t padded(std::size_t size) {
    return (size + 3) / 4 * 4;
}

std::size_t word16(const std::uint8_t* at) {
    std::uint16_t value = 0;
    std::memcpy(&value, at, sizeof value);
    return value;
}

/// Length of the client's first message, or of the request; 0 when too little of it is there yet.
std::size_t messageSize(const std::vector<std::uint8_t>& bytes, bool isSetUp) {
    constexpr std::size_t setupHeaderSize = 12;
    if (!isSetUp) {
        if (bytes.size() < setupHeaderSize) return 0;
        return setupHeaderSize + padded(word16(&bytes[6])) + padded(word16(&bytes[8]));
    }
    return bytes.size() < 4 ? 0 : word16(&bytes[2]) * 4;
}

}  // namespace

XProxy::XProxy(const QByteArray& serverDisplay, RequestHandler onRequest)
    : m_serverNumber(serverDisplay.mid(1)), m_onRequest(std::move(onRequest)) {
    // Numbers beyond those that a server picks for itself.
    constexpr int firstNumber = 1000;
    for (int number = firstNumber; m_listener < 0; ++number) {
        m_number = QByteArray::number(number);
        m_listener = socketOfDisplay(m_number, &::bind);
    }
    ::listen(m_listener, 1);
    m_wakeUp = ::eventfd(0, EFD_CLOEXEC);
    m_thread = std::thread([this] { serve(); });
}

XProxy::~XProxy() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_wakeUp, &one, sizeof one);
    m_thread.join();
    ::close(m_listener);
    ::close(m_wakeUp);
}

XProxy::RequestHandler XProxy::withoutExtension(const QByteArray& name) {
    return [name](std::vector<std::uint8_t>& request) {
        const auto nameAt = request.begin() + queryExtensionNameOffset;
        if (request[0] != queryExtensionOpcode ||
            word16(&request[4]) != static_cast<std::size_t>(name.size()) ||
            !std::equal(name.begin(), name.end(), nameAt)) {
            return;
        }
        *nameAt = '-';
    };
}

void XProxy::serve() {
    std::array<pollfd, 2> waiting{{{m_wakeUp, POLLIN, 0}, {m_listener, POLLIN, 0}}};
    ::poll(waiting.data(), waiting.size(), -1);
    if (waiting[0].revents != 0) return;
    const int client = ::accept(m_listener, nullptr, nullptr);
    const int server = socketOfDisplay(m_serverNumber, &::connect);

    std::array<pollfd, 3> ends{{{m_wakeUp, POLLIN, 0}, {client, POLLIN, 0}, {server, POLLIN, 0}}};
    std::array<std::uint8_t, 65536> buffer{};
    while (::poll(ends.data(), ends.size(), -1) >= 0 && ends[0].revents == 0) {
        if (ends[1].revents != 0 && !passOnRequests(client, server)) break;
        if (ends[2].revents != 0) {
            const auto size = ::read(server, buffer.data(), buffer.size());
            if (size <= 0) break;
            writeAll(client, buffer.data(), static_cast<std::size_t>(size));
        }
    }
    ::close(client);
    ::close(server);
}

bool XProxy::passOnRequests(int client, int server) {
    std::array<std::uint8_t, 65536> buffer{};
    const auto size = ::read(client, buffer.data(), buffer.size());
    if (size <= 0) return false;
    m_pending.insert(m_pending.end(), buffer.begin(), buffer.begin() + size);
    for (;;) {
        const std::size_t next = messageSize(m_pending, m_isSetUp);
        if (next == 0 || m_pending.size() < next) return true;
        const auto end = m_pending.begin() + static_cast<std::ptrdiff_t>(next);
        std::vector<std::uint8_t> message(m_pending.begin(), end);
        m_pending.erase(m_pending.begin(), end);
        if (m_isSetUp) m_onRequest(message);
        m_isSetUp = true;
        writeAll(server, message.data(), message.size());
    }
}

}  // namespace quietlark
