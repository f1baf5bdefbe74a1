#pragma once

#include <QNetworkAccessManager>

#include "platform/http_client.h"

namespace quietlark {

/// HTTP by Qt Network: one session, whose connections stay open between requests for two minutes.
///
/// - An upload is sent once. Only if the connection is one kept from earlier and ends without an
///   answer, which is how a connection that has died meanwhile shows, it is sent once more over a
///   new one. A Get may be sent up to four times by Qt when connections end without an answer.
/// - The idle time-out runs while connecting, sending and waiting; an answer's head counts as one
///   step, its body by every piece.
/// - Cookies and credentials are neither kept nor sent. The system's proxy is used, but never
///   towards this computer.
class QtHttpClient final : public HttpClient {
public:
    QtHttpClient();

    [[nodiscard]] Cancellable send(HttpRequest request, AnswerHandler onAnswer) override;

private:
    QNetworkAccessManager m_manager;
};

}  // namespace quietlark
