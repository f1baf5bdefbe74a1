#include "platform/qt/http_exchange.h"

#include <algorithm>
#include <utility>

#include <QNetworkReply>

#include "platform/qt/transport_failure.h"
#include "platform/qt/upload_body.h"

namespace quietlark {

HttpExchange::HttpExchange(QNetworkReply* reply, UploadBody* upload,
                           HttpClient::AnswerHandler onAnswer, QObject* parent)
    : QObject(parent), m_reply(reply), m_onAnswer(std::move(onAnswer)) {
    if (upload) watch(*upload);
    connect(reply, &QNetworkReply::readyRead, this, &HttpExchange::takeBody);
    connect(reply, &QNetworkReply::finished, this, &HttpExchange::onFinished);
}

HttpExchange::~HttpExchange() {
    dropReply();
}

void HttpExchange::withdraw() {
    m_onAnswer = nullptr;
    dropReply();
    deleteLater();
}

void HttpExchange::watch(UploadBody& upload) {
    upload.setParent(m_reply);
    // A connection kept from an earlier request may have died unnoticed while the computer slept:
    // that request has reached nobody and is sent again, once. On a connection of its own it is
    // not: there, silence means that the server has had it.
    upload.allowRestart();
    connect(m_reply, &QNetworkReply::socketStartedConnecting, &upload, &UploadBody::forbidRestart);
    // Following a redirect is not a retry.
    connect(m_reply, &QNetworkReply::redirected, &upload, &UploadBody::allowRestart);
}

void HttpExchange::takeBody() {
    // In pieces, because a few bytes may unpack to a great many.
    constexpr qint64 pieceBytes = 64 * 1024;
    while (m_reply && m_reply->isOpen()) {
        const QByteArray piece = m_reply->read(pieceBytes);
        if (piece.isEmpty()) return;
        m_body += piece;
        if (m_body.size() > HttpClient::maxBodyBytes) {
            return finish(tl::unexpected(answerTooLong(m_reply->url())));
        }
    }
}

void HttpExchange::onFinished() {
    takeBody();
    if (!m_onAnswer) return;
    if (!hasWholeAnswer(*m_reply)) return finish(tl::unexpected(transportFailure(*m_reply)));
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    finish(HttpResponse{status, std::move(m_body)});
}

void HttpExchange::finish(HttpClient::Answer answer) {
    const auto onAnswer = std::exchange(m_onAnswer, nullptr);
    dropReply();
    deleteLater();
    // Last, as the handler may do anything.
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
