#pragma once

#include <QObject>

#include "platform/curl/curl_event_loop.h"
#include "platform/http_stream.h"

namespace quietlark {

/// HTTP/1.1 by libcurl, for bodies of any length, on the event loop of the thread that made it.
///
/// - Half a mebibyte waits between the network and the handlers at most, whatever the server and
///   the connection. That is lost when the program is killed.
/// - A body that is cut short is noticed, chunks included.
/// - Proxies are those of the environment (`https_proxy` and such, `no_proxy`), never towards this
///   computer. Certificates are the system's, or those in the file SSL_CERT_FILE.
class CurlHttpStreams final : public HttpStreams {
public:
    CurlHttpStreams();

    [[nodiscard]] Cancellable get(HttpStreamRequest request, Handlers handlers) override;

private:
    CurlEventLoop m_loop;
    QObject m_exchanges;  ///< the parent of those under way
};

}  // namespace quietlark
