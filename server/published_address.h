#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quietlark {

/// Where an endpoint file says that a server listens. Each question takes seconds at most.
class PublishedAddress {
public:
    /// What the first line of the file, "local=HOST:PORT", names.
    [[nodiscard]] static std::optional<PublishedAddress> in(std::string_view content);

    /// Whether certainly nobody listens there: this computer says so.
    [[nodiscard]] bool isDeserted() const;

    /// Whether a server such as this one answers there. False for names that would have to be
    /// looked up in the network, and for what gives no answer in a second.
    [[nodiscard]] bool isServers() const;

    bool operator==(const PublishedAddress&) const = default;

private:
    PublishedAddress(std::string_view host, std::string_view port) : m_host(host), m_port(port) {}

    std::string m_host;  ///< without brackets
    std::string m_port;
};

}  // namespace quietlark
