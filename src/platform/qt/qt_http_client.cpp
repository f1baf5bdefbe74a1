#include "platform/qt/qt_http_client.h"

#include <memory>
#include <utility>

#include <QPointer>

#include "platform/http_failure.h"
#include "platform/qt/http_exchange.h"
#include "platform/qt/network_policy.h"
#include "platform/qt/transport_failure.h"

namespace quietlark {

namespace {

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

QtHttpClient::QtHttpClient(std::chrono::milliseconds answerLimit) : m_answerLimit(answerLimit) {
    useProxies(m_manager);
}

Cancellable QtHttpClient::send(HttpRequest request, AnswerHandler onAnswer) {
    // The manager would also read files and resources.
    if (!isHttp(request.url)) return refuse(request.url, std::move(onAnswer));
    const QPointer<HttpExchange> exchange(
        new HttpExchange(m_manager, std::move(request), m_answerLimit, std::move(onAnswer)));
    return Cancellable([exchange] {
        if (exchange) exchange->withdraw();
    });
}

}  // namespace quietlark
