#include "timing_server.h"

#include <cstdlib>
#include <string>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {

namespace {

constexpr std::string_view answer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";
constexpr std::string_view lengthHeader = "Content-Length: ";

/// How long the request at the start of `received` is in all; 0 while its head is incomplete.
std::size_t requestLength(const std::string& received) {
    const auto headEnd = received.find("\r\n\r\n");
    if (headEnd == std::string::npos) return 0;
    const auto length = received.find(lengthHeader);
    const std::size_t body =
        length < headEnd
            ? std::strtoul(received.c_str() + length + lengthHeader.size(), nullptr, 10)
            : 0;
    return headEnd + 4 + body;
}

}  // namespace

TimingServer::TimingServer() {
    m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(m_listener, reinterpret_cast<sockaddr*>(&address), length);
    ::listen(m_listener, 8);
    ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { serve(); });
}

TimingServer::~TimingServer() {
    // Wakes accept(); a client still connected has gone by now.
    ::shutdown(m_listener, SHUT_RDWR);
    m_thread.join();
    ::close(m_listener);
}

TimingServer::Arrival TimingServer::takeArrival() {
    std::unique_lock lock(m_mutex);
    m_arrived.wait(lock, [this] { return m_hasArrival; });
    m_hasArrival = false;
    return m_arrival;
}

void TimingServer::serve() {
    for (;;) {
        const int connection = ::accept(m_listener, nullptr, nullptr);
        if (connection < 0) return;
        serveConnection(connection);
        ::close(connection);
    }
}

void TimingServer::serveConnection(int connection) {
    const int on = 1;
    ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::string received;
    Arrival arrival;
    char block[65536];
    for (;;) {
        const ssize_t count = ::recv(connection, block, sizeof block, 0);
        if (count <= 0) return;
        if (received.empty()) arrival.firstByte = Clock::now();
        received.append(block, static_cast<std::size_t>(count));
        const std::size_t length = requestLength(received);
        if (length == 0 || received.size() < length) continue;
        arrival.lastByte = Clock::now();
        received.clear();
        {
            const std::lock_guard lock(m_mutex);
            m_arrival = arrival;
            m_hasArrival = true;
        }
        m_arrived.notify_one();
        ::send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
    }
}

}  // namespace quietlark
