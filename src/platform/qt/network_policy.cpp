#include "platform/qt/network_policy.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkRequest>

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

}  // namespace

void useProxies(QNetworkAccessManager& manager) {
    manager.setProxyFactory(new ProxyExceptForThisComputer);
}

void keepToPlainHttp(QNetworkRequest& request) {
    // Over plain HTTP this would be an offer to switch protocols with every request, which small
    // servers do not understand.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
}

}  // namespace quietlark
