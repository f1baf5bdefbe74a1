#include "platform/qt/http_exchange.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include "platform/qt/network_policy.h"
#include "platform/qt/transport_failure.h"
#include "platform/qt/upload_body.h"
#include "platform/small_segments.h"

namespace quietlark {

namespace {

int timeoutMilliseconds(std::chrono::milliseconds timeout) {
    const auto longest = std::chrono::milliseconds(std::numeric_limits<int>::max());
    return static_cast<int>(std::min(timeout, longest).count());
}

QNetworkRequest networkRequest(const HttpRequest& request) {
    QNetworkRequest result(request.url);
    result.setTransferTimeout(timeoutMilliseconds(request.idleTimeout));
    keepToPlainHttp(result);
    return result;
}

bool isSameOrigin(const QUrl& one, const QUrl& other) {
    const auto port = [](const QUrl& url) {
        return url.port(url.scheme() == QLatin1String("https") ? 443 : 80);
    };
    return one.scheme() == other.scheme() && one.host() == other.host() && port(one) == port(other);
}

}  // namespace

HttpExchange::HttpExchange(QNetworkAccessManager& manager, HttpRequest request,
                           std::chrono::milliseconds shortestAnswerLimit,
                           HttpClient::AnswerHandler onAnswer)
    : QObject(&manager),
      m_manager(manager),
      m_request(std::move(request)),
      m_shortestAnswerLimit(shortestAnswerLimit),
      m_onAnswer(std::move(onAnswer)) {
    m_answerLimit.setSingleShot(true);
    connect(&m_answerLimit, &QTimer::timeout, this,
            [this] { finish(tl::unexpected(answerTooSlow(m_request.url))); });
    start();
}

HttpExchange::~HttpExchange() {
    dropReply();
}

void HttpExchange::withdraw() {
    m_onAnswer = nullptr;
    m_answerLimit.stop();
    dropReply();
    deleteLater();
}

void HttpExchange::start() {
    const bool isUpload = m_request.method == HttpRequest::Method::Post;
    m_reply = isUpload ? startUpload() : m_manager.get(networkRequest(m_request));
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &HttpExchange::limitAnswer);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpExchange::takeBody);
    connect(m_reply, &QNetworkReply::finished, this, &HttpExchange::onFinished);
}

QNetworkReply* HttpExchange::startUpload() {
    QNetworkRequest request = networkRequest(m_request);
    request.setHeader(QNetworkRequest::ContentTypeHeader, m_request.contentType);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    // Qt gives no access to its socket. Left alone, it makes the end of an upload wait for an
    // acknowledgement, which a server on a connection in use delays by 40 ms.
    auto* body = new UploadBody(m_request.body, sendSmallSegmentsAtOnce);
    QNetworkReply* reply = m_manager.post(request, body);
    body->setParent(reply);
    // A connection kept from an earlier request may have died unnoticed while the computer slept.
    // So that what was said is not lost, an upload that ends unanswered on one is sent again, once.
    // Qt does not tell whether any of it arrived: a server that fails over a recording on a kept
    // connection gets it twice. Over a connection of its own it is sent once: there, silence means
    // that the server has had it.
    body->allowRestart();
    connect(reply, &QNetworkReply::socketStartedConnecting, body, &UploadBody::forbidRestart);
    return reply;
}

void HttpExchange::limitAnswer() {
    if (m_answerLimit.isActive()) return;
    m_answerLimit.start(std::max(m_request.idleTimeout, m_shortestAnswerLimit));
}

void HttpExchange::takeBody() {
    // In pieces, because a few bytes may unpack to a great many.
    constexpr qint64 pieceBytes = 64 * 1024;
    while (m_reply && m_reply->isOpen()) {
        const QByteArray piece = m_reply->read(pieceBytes);
        if (piece.isEmpty()) return;
        m_answerBody += piece;
        if (m_answerBody.size() > HttpClient::maxBodyBytes) {
            return finish(tl::unexpected(answerTooLong(m_reply->url())));
        }
    }
}

void HttpExchange::onFinished() {
    takeBody();
    if (!m_onAnswer) return;
    if (const auto target = redirectTarget()) {
        m_request.url = *target;
        m_answerBody.clear();
        m_answerLimit.stop();
        dropReply();
        return start();
    }
    if (!hasWholeAnswer(*m_reply)) return finish(tl::unexpected(transportFailure(*m_reply)));
    finish(HttpResponse{statusOf(*m_reply), std::move(m_answerBody)});
}

std::optional<QUrl> HttpExchange::redirectTarget() {
    const int status = statusOf(*m_reply);
    // The other redirects ask for a page instead of sending the body on.
    if (m_request.method != HttpRequest::Method::Post || (status != 307 && status != 308)) {
        return std::nullopt;
    }
    const QUrl target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    const QUrl resolved = m_request.url.resolved(target);
    // A recording goes to the server that was chosen and to no other.
    if (!target.isValid() || !isSameOrigin(m_request.url, resolved)) return std::nullopt;
    if (m_redirectsLeft == 0) return std::nullopt;
    --m_redirectsLeft;
    return resolved;
}

void HttpExchange::finish(HttpClient::Answer answer) {
    const auto onAnswer = std::exchange(m_onAnswer, nullptr);
    m_answerLimit.stop();
    dropReply();
    deleteLater();
    // Last, as the handler may withdraw or ask again.
    onAnswer(std::move(answer));
}

void HttpExchange::dropReply() {
    if (!m_reply) return;
    m_reply->disconnect(this);
    m_reply->abort();
    m_reply->deleteLater();
    m_reply.clear();
}

}  // namespace quietlark
