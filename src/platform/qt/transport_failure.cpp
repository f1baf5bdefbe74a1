#include "platform/qt/transport_failure.h"

#include <QCoreApplication>
#include <QNetworkReply>

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

QString serverName(const QUrl& url) {
    return url.port() < 0 ? url.host() : url.host() + u':' + QString::number(url.port());
}

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(QtHttpClient)

public:
    static QString of(Error error) {
        switch (error) {
            case QNetworkReply::ConnectionRefusedError:
                return tr("The server at %1 refused the connection.");
            case QNetworkReply::RemoteHostClosedError:
            case QNetworkReply::ContentReSendError:
                return tr("The server at %1 closed the connection before its answer was complete.");
            case QNetworkReply::HostNotFoundError:
                return tr("The server %1 was not found.");
            case QNetworkReply::TimeoutError:
            case QNetworkReply::OperationCanceledError:
                return tr("The server at %1 did not answer in time.");
            case QNetworkReply::SslHandshakeFailedError:
                return tr("No secure connection to %1 could be made.");
            default:
                return tr("The connection to %1 failed.");
        }
    }
    static QString tooLong() { return tr("The answer of the server at %1 is too long."); }
    static QString notHttp() { return tr("%1 is not an address of a web server."); }
};

TransportError failure(const QUrl& url, Error error, const QString& sentence,
                       const QString& detail) {
    return {QStringLiteral("QNetworkReply"),
            error,
            sentence,
            {{QStringLiteral("url"), url.toString(QUrl::FullyEncoded | QUrl::RemoveUserInfo)},
             {QStringLiteral("detail"), detail}}};
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
    return failure(reply.url(), reply.error(),
                   Sentences::of(reply.error()).arg(serverName(reply.url())), reply.errorString());
}

TransportError answerCutShort(const QUrl& url) {
    const Error error = QNetworkReply::RemoteHostClosedError;
    return failure(url, error, Sentences::of(error).arg(serverName(url)),
                   QStringLiteral("shorter than its length"));
}

TransportError answerTooLong(const QUrl& url) {
    return failure(url, QNetworkReply::UnknownContentError,
                   Sentences::tooLong().arg(serverName(url)),
                   QStringLiteral("more than %1 bytes").arg(HttpClient::maxBodyBytes));
}

TransportError answerTooSlow(const QUrl& url) {
    const Error error = QNetworkReply::OperationCanceledError;
    return failure(url, error, Sentences::of(error).arg(serverName(url)),
                   QStringLiteral("its answer does not end"));
}

TransportError notHttp(const QUrl& url) {
    return failure(url, QNetworkReply::ProtocolUnknownError,
                   Sentences::notHttp().arg(url.toDisplayString()),
                   QStringLiteral("scheme %1").arg(url.scheme()));
}

}  // namespace quietlark
