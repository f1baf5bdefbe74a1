#pragma once

#include "platform/http_client.h"

namespace quietlark {

/// Why no complete answer came, whichever library speaks HTTP.
enum class HttpFailure {
    NotAnAddress,  ///< the address is none of a web server
    NotFound,      ///< its server has no address on the network
    Refused,
    Insecure,     ///< no encryption that can be relied on
    TimedOut,     ///< silence, or an answer that does not come to its end
    ClosedEarly,  ///< the connection ended before the answer did
    TooLong,      ///< more than HttpClient accepts
    Failed,       ///< anything else
};

/// What is told of it: the sentence for the user is made here; `domain`, `code` and `detail` are
/// the library's own. Any thread.
[[nodiscard]] TransportError transportError(HttpFailure failure, const QUrl& url,
                                            const QString& domain, long code,
                                            const QString& detail);

/// Whether it is the address of a web server. HTTP libraries read files and more besides.
[[nodiscard]] bool isHttp(const QUrl& url);

}  // namespace quietlark
