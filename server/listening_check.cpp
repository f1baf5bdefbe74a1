#include "server/listening_check.h"

#include <cerrno>
#include <cstring>

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {
namespace {

constexpr int noSuchAddress = -1;

/// The number of the error, 0 for none.
int errorAt(const addrinfo& address) {
    const int trial = socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
    if (trial < 0) return errno;
    const int on = 1;
    const int off = 0;
    setsockopt(trial, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (address.ai_family == AF_INET6)
        setsockopt(trial, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
    const int error = bind(trial, address.ai_addr, address.ai_addrlen) == 0 ? 0 : errno;
    close(trial);
    return error;
}

int errorAt(const std::string& host, int port) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0)
        return noSuchAddress;
    int error = noSuchAddress;
    for (const addrinfo* each = found; each && error != 0; each = each->ai_next)
        error = errorAt(*each);
    freeaddrinfo(found);
    return error;
}

}  // namespace

std::optional<std::string> listeningObstacle(const std::string& host, int port) {
    int error = errorAt(host, port);
    if (error != 0 && error != EADDRINUSE && host == "::") error = errorAt("0.0.0.0", port);
    if (error == 0) return std::nullopt;
    return error == noSuchAddress ? "There is no such address" : std::strerror(error);
}

}  // namespace quietlark
