#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quietlark {

/// What the local network is told about this server, as an instance of _whisper._tcp.
struct ServiceAnnouncement {
    std::string name;  ///< of the instance, at most 63 bytes
    std::uint16_t port = 0;
    std::vector<std::pair<std::string, std::string>> txt;  ///< keys and values

    bool operator==(const ServiceAnnouncement&) const = default;
};

/// Tells the local network about a service (DNS-SD). Any thread; returns at once.
class ServiceAnnouncer {
public:
    virtual ~ServiceAnnouncer() = default;

    /// Announces the service, in place of what was announced before.
    virtual void announce(const ServiceAnnouncement& announcement) = 0;

    /// Takes the announcement back.
    virtual void withdraw() = 0;
};

}  // namespace quietlark
