#include "platform/qt/transport_failure.h"

#include <QNetworkReply>

#include "platform/http_failure.h"

namespace quietlark {

namespace {

using Error = QNetworkReply::NetworkError;

/// Whether the error is about the connection, rather than about what a server answered over it.
bool isConnectionError(Error error) {
    switch (error) {
        case QNetworkReply::TooManyRedirectsError:
        case QNetworkReply::InsecureRedirectError:
        case QNetworkReply::ProxyAuthenticationRequiredError:
            return false;
        case QNetworkReply::ContentReSendError:
        case QNetworkReply::ProtocolFailure:
            return true;
        default:
            return error < QNetworkReply::ContentAccessDenied;
    }
}

/// A body without a length lasts as long as its connection (RFC 9112, section 6.3). Qt takes its
/// end for a failure when the answer has come before Qt began to wait for it.
bool endedWithItsConnection(const QNetworkReply& reply) {
    const bool isClosed = reply.error() == QNetworkReply::RemoteHostClosedError ||
                          reply.error() == QNetworkReply::ContentReSendError;
    return isClosed && statusOf(reply) > 0 && !reply.hasRawHeader("Content-Length") &&
           !reply.hasRawHeader("Transfer-Encoding") && !reply.hasRawHeader("Content-Encoding");
}

/// Qt fails an upload that is redirected and may not be sent again, though it need not be.
bool isRedirect(const QNetworkReply& reply) {
    return reply.error() == QNetworkReply::ContentReSendError && statusOf(reply) / 100 == 3;
}

HttpFailure meaning(Error error) {
    switch (error) {
        case QNetworkReply::ConnectionRefusedError:
            return HttpFailure::Refused;
        case QNetworkReply::RemoteHostClosedError:
        case QNetworkReply::ContentReSendError:
            return HttpFailure::ClosedEarly;
        case QNetworkReply::HostNotFoundError:
            return HttpFailure::NotFound;
        case QNetworkReply::TimeoutError:
        case QNetworkReply::OperationCanceledError:
            return HttpFailure::TimedOut;
        case QNetworkReply::SslHandshakeFailedError:
            return HttpFailure::Insecure;
        default:
            return HttpFailure::Failed;
    }
}

TransportError failure(HttpFailure kind, const QUrl& url, Error error, const QString& detail) {
    return transportError(kind, url, QStringLiteral("QNetworkReply"), error, detail);
}

}  // namespace

int statusOf(const QNetworkReply& reply) {
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool hasWholeAnswer(const QNetworkReply& reply) {
    if (reply.error() == QNetworkReply::NoError) return true;
    if (endedWithItsConnection(reply) || isRedirect(reply)) return true;
    // A good status with an error means that the body was cut short.
    return statusOf(reply) >= 300 && !isConnectionError(reply.error());
}

TransportError transportFailure(const QNetworkReply& reply) {
    return failure(meaning(reply.error()), reply.url(), reply.error(), reply.errorString());
}

TransportError answerTooLong(const QUrl& url) {
    return failure(HttpFailure::TooLong, url, QNetworkReply::UnknownContentError,
                   QStringLiteral("more than %1 bytes").arg(HttpClient::maxBodyBytes));
}

TransportError answerTooSlow(const QUrl& url) {
    return failure(HttpFailure::TimedOut, url, QNetworkReply::OperationCanceledError,
                   QStringLiteral("its answer does not end"));
}

TransportError notHttp(const QUrl& url) {
    return failure(HttpFailure::NotAnAddress, url, QNetworkReply::ProtocolUnknownError,
                   QStringLiteral("scheme %1").arg(url.scheme()));
}

}  // namespace quietlark
