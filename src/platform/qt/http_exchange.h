#pragma once

#include <chrono>
#include <optional>

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include "platform/http_client.h"

class QNetworkAccessManager;
class QNetworkReply;

namespace quietlark {

/// One request of QtHttpClient, from its sending to its answer. Deletes itself once it has answered
/// or was withdrawn.
class HttpExchange final : public QObject {
public:
    /// Sends `request` over `manager`, whose child the exchange becomes. Each answer, also one that
    /// redirects, ends within the request's idle time-out or `shortestAnswerLimit`, whichever is
    /// longer.
    HttpExchange(QNetworkAccessManager& manager, HttpRequest request,
                 std::chrono::milliseconds shortestAnswerLimit, HttpClient::AnswerHandler onAnswer);
    ~HttpExchange() override;

    /// Gives the request up; the handler does not run any more.
    void withdraw();

private:
    void start();
    [[nodiscard]] QNetworkReply* startUpload();
    void limitAnswer();
    void takeBody();
    void onFinished();
    /// Where the upload is sent on to, if it may be.
    [[nodiscard]] std::optional<QUrl> redirectTarget();
    void finish(HttpClient::Answer answer);
    void dropReply();

    QNetworkAccessManager& m_manager;
    HttpRequest m_request;
    const std::chrono::milliseconds m_shortestAnswerLimit;
    HttpClient::AnswerHandler m_onAnswer;  ///< empty once it has run or was withdrawn
    QPointer<QNetworkReply> m_reply;
    int m_redirectsLeft = 5;
    QByteArray m_answerBody;
    QTimer m_answerLimit;  ///< runs from the head of an answer to its end
};

}  // namespace quietlark
