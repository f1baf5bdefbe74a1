#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>

#include "platform/http_client.h"

class QNetworkReply;

namespace quietlark {

class UploadBody;

/// One request of QtHttpClient under way. Deletes itself once it has answered or was withdrawn.
class HttpExchange final : public QObject {
public:
    /// `reply` and, for an upload, `upload` become its own.
    HttpExchange(QNetworkReply* reply, UploadBody* upload, HttpClient::AnswerHandler onAnswer,
                 QObject* parent);
    ~HttpExchange() override;

    /// Gives the request up; the handler does not run any more.
    void withdraw();

private:
    void watch(UploadBody& upload);
    void takeBody();
    void onFinished();
    void finish(HttpClient::Answer answer);
    void dropReply();

    QPointer<QNetworkReply> m_reply;
    HttpClient::AnswerHandler m_onAnswer;  ///< empty once it has run or was withdrawn
    QByteArray m_body;
};

}  // namespace quietlark
