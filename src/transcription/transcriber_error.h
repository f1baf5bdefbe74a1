#pragma once

#include <variant>

#include <QString>

#include "platform/http_client.h"

namespace quietlark {

/// Why there is no text.
struct TranscriberError {
    /// The server refused: a status outside 200 to 299.
    struct RequestFailed {
        int status = 0;
        QString body;
        bool operator==(const RequestFailed&) const = default;
    };
    /// There is no address to send to.
    struct EmptyURL {};
    /// The address is not that of a known kind of server.
    struct Unresolvable {};
    /// What answered does not speak HTTP.
    struct InvalidResponse {};

    /// A TransportError is the HTTP client's own, passed on as it came.
    std::variant<RequestFailed, EmptyURL, Unresolvable, InvalidResponse, TransportError> reason;

    /// One sentence for the user.
    [[nodiscard]] QString localizedDescription() const;
};

}  // namespace quietlark
