#pragma once

#include <optional>

#include <QString>

#include "config/server_mode.h"

namespace quietlark {

class EndpointFile;

/// Turns the user's choice of server into an address, without asking the network.
class ServerEndpoint {
public:
    explicit ServerEndpoint(const EndpointFile& endpointFile);

    /// Scheme, host and port of the chosen server; absent when none is chosen, the local one has
    /// not published its address, or the host is empty or the port below 1. The host is taken as
    /// it stands: an IPv6 address needs its brackets.
    [[nodiscard]] std::optional<QString> baseURL(const ServerMode& mode) const;

private:
    const EndpointFile& m_endpointFile;
};

}  // namespace quietlark
