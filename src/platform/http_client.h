#pragma once

#include <chrono>
#include <functional>

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QUrl>
#include <tl/expected.hpp>

#include "platform/cancellable.h"

namespace quietlark {

/// One request. No headers are sent beyond `contentType` and what HTTP itself needs.
struct HttpRequest {
    enum class Method { Get, Post };

    Method method = Method::Get;
    QUrl url;
    std::chrono::milliseconds idleTimeout{0};  ///< longest time without a byte moving
    QByteArray contentType;                    ///< of `body`; for Post only
    QByteArray body;                           ///< for Post only
};

/// Any answer with a status, whatever the status is.
struct HttpResponse {
    int status = 0;  ///< 0 when a system's HTTP layer gives an answer that has none
    QByteArray body;
};

/// No complete answer came: no connection, a time-out, a broken or endless body.
struct TransportError {
    QString domain;                   ///< which layer speaks, for the log
    long code = 0;                    ///< that layer's number
    QString description;              ///< one sentence for the user
    QMap<QString, QString> userInfo;  ///< further detail, for the log
};

/// One shared HTTP session: connections are kept open and reused.
class HttpClient {
public:
    using Answer = tl::expected<HttpResponse, TransportError>;
    using AnswerHandler = std::function<void(Answer)>;

    /// Longest body that is accepted, in bytes; a longer one is a TransportError.
    static constexpr qsizetype maxBodyBytes = 8 * 1024 * 1024;

    /// An answer that has begun ends within its request's idle time-out or this, whichever is
    /// longer; one that drips on is a TransportError. An answer that redirects a Post has a time of
    /// its own.
    static constexpr std::chrono::milliseconds shortestAnswerLimit{10'000};

    virtual ~HttpClient() = default;

    /// Sends the request and calls `onAnswer` at most once, on the main thread, never before the
    /// call returns; it must not destroy this client. A redirect is followed only within the same
    /// origin for Post. Main thread.
    [[nodiscard]] virtual Cancellable send(HttpRequest request, AnswerHandler onAnswer) = 0;
};

}  // namespace quietlark
