#include "platform/curl/curl_http_streams.h"

#include <csignal>
#include <utility>

#include <QPointer>

#include "platform/curl/curl_exchange.h"

namespace quietlark {

CurlHttpStreams::CurlHttpStreams() {
    // Encryption writes to a connection that its server has closed.
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
}

Cancellable CurlHttpStreams::get(HttpStreamRequest request, Handlers handlers) {
    const QPointer<CurlExchange> exchange(
        new CurlExchange(m_exchanges, m_loop, std::move(request), std::move(handlers)));
    return Cancellable([exchange] {
        if (exchange) exchange->withdraw();
    });
}

}  // namespace quietlark
