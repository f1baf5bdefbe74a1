#include "server/published_address.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <vector>

#include <httplib.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {
namespace {

constexpr std::chrono::milliseconds longestProbe{1000};

/// What comes of connecting there: 0, the system's error, or EINPROGRESS where nobody answers.
int outcomeOfConnecting(const addrinfo& address) {
    const int probe =
        socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP);
    if (probe < 0) return errno;
    int error = connect(probe, address.ai_addr, address.ai_addrlen) == 0 ? 0 : errno;
    pollfd descriptor{probe, POLLOUT, 0};
    if (error == EINPROGRESS && poll(&descriptor, 1, static_cast<int>(longestProbe.count())) > 0) {
        socklen_t length = sizeof error;
        getsockopt(probe, SOL_SOCKET, SO_ERROR, &error, &length);
    }
    close(probe);
    return error;
}

/// The same for all that the address stands for; empty where that is not known.
std::vector<int> outcomesOfConnecting(const std::string& host, const std::string& port) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    // Other names would have to be looked up in the network.
    wanted.ai_flags = AI_NUMERICSERV | (host == "localhost" ? 0 : AI_NUMERICHOST);
    addrinfo* found = nullptr;
    std::vector<int> outcomes;
    if (getaddrinfo(host.c_str(), port.c_str(), &wanted, &found) != 0) return outcomes;
    for (const addrinfo* each = found; each; each = each->ai_next)
        outcomes.push_back(outcomeOfConnecting(*each));
    freeaddrinfo(found);
    return outcomes;
}

}  // namespace

std::optional<PublishedAddress> PublishedAddress::in(std::string_view content) {
    constexpr std::string_view key = "local=";
    if (!content.starts_with(key)) return std::nullopt;
    const auto line = content.substr(0, content.find('\n')).substr(key.size());
    const auto colon = line.rfind(':');
    if (colon == std::string_view::npos) return std::nullopt;
    auto host = line.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    const auto port = line.substr(colon + 1);
    std::uint16_t number = 0;
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), number);
    if (host.empty() || error != std::errc() || end != port.data() + port.size())
        return std::nullopt;
    return PublishedAddress(host, port);
}

bool PublishedAddress::isDeserted() const {
    const auto outcomes = outcomesOfConnecting(m_host, m_port);
    return !outcomes.empty() &&
           std::ranges::all_of(outcomes, [](int outcome) { return outcome == ECONNREFUSED; });
}

bool PublishedAddress::isServers() const {
    const auto outcomes = outcomesOfConnecting(m_host, m_port);
    if (std::ranges::find(outcomes, 0) == outcomes.end()) return false;
    // Another program may have been given the port of a server that crashed.
    httplib::Client client(m_host, std::stoi(m_port));
    client.set_connection_timeout(longestProbe);
    client.set_read_timeout(longestProbe);
    const bool isIpv6 = m_host.find(':') != std::string::npos;
    const std::string host = isIpv6 ? "[" + m_host + "]" : m_host;
    constexpr std::string_view expected = R"({"status":"ok"})";
    std::string start;
    (void)client.Get("/health", {{"Host", host + ":" + m_port}},
                     [&](const char* bytes, std::size_t count) {
                         start.append(bytes, count);
                         return start.size() < expected.size();
                     });
    return start.starts_with(expected);
}

}  // namespace quietlark
