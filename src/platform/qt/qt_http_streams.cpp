#include "platform/qt/qt_http_streams.h"

#include <utility>

#include <QPointer>

#include "platform/qt/http_stream_exchange.h"
#include "platform/qt/network_policy.h"

namespace quietlark {

QtHttpStreams::QtHttpStreams() {
    useProxies(m_manager);
}

Cancellable QtHttpStreams::get(HttpStreamRequest request, Handlers handlers) {
    const QPointer<HttpStreamExchange> exchange(
        new HttpStreamExchange(m_manager, std::move(request), std::move(handlers)));
    return Cancellable([exchange] {
        if (exchange) exchange->withdraw();
    });
}

}  // namespace quietlark
