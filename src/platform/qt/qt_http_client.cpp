#include "platform/qt/qt_http_client.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

#include "platform/qt/http_exchange.h"
#include "platform/qt/transport_failure.h"
#include "platform/qt/upload_body.h"

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

int timeoutMilliseconds(std::chrono::milliseconds timeout) {
    const auto longest = std::chrono::milliseconds(std::numeric_limits<int>::max());
    return static_cast<int>(std::min(timeout, longest).count());
}

QNetworkRequest networkRequest(const HttpRequest& request) {
    const bool isPost = request.method == HttpRequest::Method::Post;
    QNetworkRequest result(request.url);
    result.setTransferTimeout(timeoutMilliseconds(request.idleTimeout));
    // A recording goes to the server that was chosen and to no other.
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                        isPost ? QNetworkRequest::SameOriginRedirectPolicy
                               : QNetworkRequest::NoLessSafeRedirectPolicy);
    // Over plain HTTP this is an offer to switch protocols with every request, which small servers
    // do not understand.
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    if (isPost) result.setHeader(QNetworkRequest::ContentTypeHeader, request.contentType);
    return result;
}

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
    const QNetworkRequest network = networkRequest(request);
    QNetworkReply* reply = nullptr;
    UploadBody* upload = nullptr;
    if (request.method == HttpRequest::Method::Post) {
        upload = new UploadBody(std::move(request.body));
        reply = m_manager.post(network, upload);
    } else {
        reply = m_manager.get(network);
    }
    const QPointer<HttpExchange> exchange(
        new HttpExchange(reply, upload, std::move(onAnswer), &m_manager));
    return Cancellable([exchange] {
        if (exchange) exchange->withdraw();
    });
}

}  // namespace quietlark
