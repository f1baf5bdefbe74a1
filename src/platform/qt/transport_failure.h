#pragma once

#include "platform/http_client.h"

class QNetworkReply;

namespace quietlark {

/// The status of the answer; 0 when none came.
[[nodiscard]] int statusOf(const QNetworkReply& reply);

/// Whether a finished reply brought a whole answer, be its status good or bad.
[[nodiscard]] bool hasWholeAnswer(const QNetworkReply& reply);

/// Why a finished reply did not bring a whole answer.
[[nodiscard]] TransportError transportFailure(const QNetworkReply& reply);

/// The body went on beyond what HttpClient accepts.
[[nodiscard]] TransportError answerTooLong(const QUrl& url);

/// The answer has begun, but does not come to its end.
[[nodiscard]] TransportError answerTooSlow(const QUrl& url);

/// The address is none of a web server.
[[nodiscard]] TransportError notHttp(const QUrl& url);

}  // namespace quietlark
