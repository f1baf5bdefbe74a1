#include "platform/receive_buffers.h"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "platform/posix/open_descriptors.h"

namespace quietlark {

namespace {

constexpr unsigned int nearMicroseconds = 2000;
// The system doubles it, to have room for its own records (socket(7), SO_RCVBUF).
constexpr int bufferBytes = 128 * 1024;

bool isLoopback(const sockaddr_storage& address) {
    constexpr unsigned char loopbackNet = 127;
    if (address.ss_family == AF_INET) {
        const auto& four = reinterpret_cast<const sockaddr_in&>(address);
        return ntohl(four.sin_addr.s_addr) >> 24 == loopbackNet;
    }
    if (address.ss_family != AF_INET6) return false;
    const in6_addr& six = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
    return IN6_IS_ADDR_LOOPBACK(&six) ||
           (IN6_IS_ADDR_V4MAPPED(&six) && six.s6_addr[12] == loopbackNet);
}

/// Everything but a connected TCP socket is far.
bool isNear(int descriptor) {
    tcp_info info{};
    socklen_t length = sizeof info;
    constexpr int established = 1;  // as the kernel counts the states
    if (::getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &length) != 0 ||
        info.tcpi_state != established) {
        return false;
    }
    sockaddr_storage peer{};
    length = sizeof peer;
    ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &length);
    // On a busy computer even the way to itself takes long.
    return isLoopback(peer) || info.tcpi_min_rtt < nearMicroseconds;
}

}  // namespace

void boundReceiveBuffersOfNearConnections() {
    forEachOpenDescriptor([](int descriptor) {
        if (!isNear(descriptor)) return;
        ::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &bufferBytes, sizeof bufferBytes);
    });
}

}  // namespace quietlark
