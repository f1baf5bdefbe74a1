#include "platform/qt/qt_http_client.h"

#include <memory>
#include <utility>

#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QPointer>

#include "platform/qt/http_exchange.h"
#include "platform/qt/transport_failure.h"

namespace quietlark {

namespace {

bool isThisComputer(const QString& host) {
    return host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
           QHostAddress(host).isLoopback();
}

/// A proxy would look for loopback addresses on its own computer.
class ProxyExceptForThisComputer final : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override {
        if (isThisComputer(query.peerHostName())) return {QNetworkProxy::NoProxy};
        return proxyForQuery(query);
    }
};

bool isHttp(const QUrl& url) {
    return url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
}

/// Fails as a request would: later, and not at all once withdrawn.
Cancellable refuse(const QUrl& url, HttpClient::AnswerHandler onAnswer) {
    auto context = std::make_shared<QObject>();
    const auto fail = [url, onAnswer = std::move(onAnswer)] {
        onAnswer(tl::unexpected(notHttp(url)));
    };
    QMetaObject::invokeMethod(context.get(), fail, Qt::QueuedConnection);
    return Cancellable([context = std::move(context)]() mutable { context.reset(); });
}

}  // namespace

QtHttpClient::QtHttpClient() {
    m_manager.setProxyFactory(new ProxyExceptForThisComputer);
}

Cancellable QtHttpClient::send(HttpRequest request, AnswerHandler onAnswer) {
    // The manager would also read files and resources.
    if (!isHttp(request.url)) return refuse(request.url, std::move(onAnswer));
    const QPointer<HttpExchange> exchange(
        new HttpExchange(m_manager, std::move(request), std::move(onAnswer)));
    return Cancellable([exchange] {
        if (exchange) exchange->withdraw();
    });
}

}  // namespace quietlark
