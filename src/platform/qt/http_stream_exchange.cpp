#include "platform/qt/http_stream_exchange.h"

#include <utility>

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include "platform/qt/network_policy.h"
#include "platform/qt/transport_failure.h"
#include "platform/receive_buffers.h"

namespace quietlark {

namespace {

// What may wait between the network and the handlers. More makes nothing faster, and is lost when
// the program or the connection is.
constexpr qint64 bufferBytes = 256 * 1024;
// Until the system's buffer is bounded: it grows with what is read from it.
constexpr qint64 firstBufferBytes = 4 * 1024;
constexpr qint64 pieceBytes = 128 * 1024;

}  // namespace

HttpStreamExchange::HttpStreamExchange(QNetworkAccessManager& manager, HttpStreamRequest request,
                                       HttpStreams::Handlers handlers)
    : QObject(&manager), m_request(std::move(request)), m_handlers(std::move(handlers)) {
    if (isHttp(m_request.url)) {
        send(manager);
        return;
    }
    // Fails as a request would: later.
    QMetaObject::invokeMethod(
        this, [this] { finish(tl::unexpected(notHttp(m_request.url))); }, Qt::QueuedConnection);
}

HttpStreamExchange::~HttpStreamExchange() {
    dropReply();
}

void HttpStreamExchange::withdraw() {
    m_handlers = {};
    dropReply();
    deleteLater();
}

void HttpStreamExchange::send(QNetworkAccessManager& manager) {
    QNetworkRequest request(m_request.url);
    keepToPlainHttp(request);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    // Qt unpacks nothing when it did not ask for it itself.
    request.setRawHeader("Accept-Encoding", "identity");
    for (const auto& [name, value] : m_request.headers)
        request.setRawHeader(name, value);
    m_reply = manager.get(request);
    m_reply->setReadBufferSize(firstBufferBytes);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &HttpStreamExchange::takeHead);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpStreamExchange::takeBody);
    connect(m_reply, &QNetworkReply::finished, this, &HttpStreamExchange::onFinished);
}

void HttpStreamExchange::takeHead() {
    if (m_hasHead || statusOf(*m_reply) == 0) return;
    m_hasHead = true;
    // Qt gives no access to its socket.
    boundReceiveBuffersOfNearConnections();
    m_reply->setReadBufferSize(bufferBytes);
    // A copy, as a handler may withdraw, which empties the originals.
    if (const auto onHead = m_handlers.onHead) onHead(head());
}

void HttpStreamExchange::takeBody() {
    if (!m_reply) return;
    takeHead();
    while (m_reply && m_reply->isOpen()) {
        const QByteArray piece = m_reply->read(pieceBytes);
        if (piece.isEmpty()) return;
        m_receivedBytes += piece.size();
        if (const auto onBytes = m_handlers.onBytes) onBytes(piece);
    }
}

void HttpStreamExchange::onFinished() {
    takeBody();
    if (!m_reply) return;
    if (!hasWholeAnswer(*m_reply)) return finish(tl::unexpected(transportFailure(*m_reply)));
    // Qt now and then takes a lost connection for the end of the body.
    if (m_receivedBytes < promisedBytes()) {
        return finish(tl::unexpected(answerCutShort(m_reply->url())));
    }
    finish({});
}

qint64 HttpStreamExchange::promisedBytes() const {
    constexpr int notModified = 304;  // the one answer with a length and no body
    if (statusOf(*m_reply) == notModified) return 0;
    return m_reply->rawHeader("Content-Length").toLongLong();
}

HttpHead HttpStreamExchange::head() const {
    HttpHead head{statusOf(*m_reply), {}, {}};
    for (const auto& [name, value] : m_reply->rawHeaderPairs())
        head.headers.emplace_back(name, value);
    const auto target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (target.isValid()) {
        head.proposal = HttpStreamRequest{m_reply->url().resolved(target), m_request.headers};
    }
    return head;
}

void HttpStreamExchange::finish(const tl::expected<void, TransportError>& outcome) {
    const auto onEnd = std::exchange(m_handlers, {}).onEnd;
    dropReply();
    deleteLater();
    // Last, as the handler may withdraw or ask again.
    if (onEnd) onEnd(outcome);
}

void HttpStreamExchange::dropReply() {
    if (!m_reply) return;
    m_reply->disconnect(this);
    // Later, as the reply may be in the middle of telling its news.
    QMetaObject::invokeMethod(
        m_reply,
        [reply = m_reply.data()] {
            reply->abort();
            reply->deleteLater();
        },
        Qt::QueuedConnection);
    m_reply.clear();
}

}  // namespace quietlark
