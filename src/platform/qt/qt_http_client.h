#pragma once

#include <chrono>

#include <QNetworkAccessManager>

#include "platform/http_client.h"

namespace quietlark {

/// HTTP by Qt Network: one session, whose connections stay open between requests for two minutes.
///
/// - An upload is sent once. Only over a connection kept from an earlier request, which may have
///   died meanwhile, it is sent once more when that ends without an answer. A Get may be sent up
///   to four times by Qt when connections end without an answer.
/// - An upload is redirected only by 307 and 308 and only within its server; any other redirect is
///   its answer. A Get follows redirects, but not from HTTPS to HTTP.
/// - The idle time-out runs while connecting, sending and waiting. The head of an answer counts as
///   one step, its body by every piece.
/// - Cookies and credentials are neither kept nor sent. The proxy that is set for programs is used,
///   but never towards this computer.
class QtHttpClient final : public HttpClient {
public:
    /// An answer that has begun ends within its request's idle time-out or `answerLimit`, whichever
    /// is longer.
    explicit QtHttpClient(std::chrono::milliseconds answerLimit = HttpClient::shortestAnswerLimit);

    [[nodiscard]] Cancellable send(HttpRequest request, AnswerHandler onAnswer) override;

private:
    QNetworkAccessManager m_manager;
    std::chrono::milliseconds m_answerLimit;
};

}  // namespace quietlark
