#include "platform/http_failure.h"

#include <QCoreApplication>

namespace quietlark {

namespace {

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(HttpFailure)

public:
    static QString of(HttpFailure failure) {
        switch (failure) {
            case HttpFailure::NotAnAddress:
                return tr("%1 is not an address of a web server.");
            case HttpFailure::NotFound:
                return tr("The server %1 was not found.");
            case HttpFailure::Refused:
                return tr("The server at %1 refused the connection.");
            case HttpFailure::Insecure:
                return tr("No secure connection to %1 could be made.");
            case HttpFailure::TimedOut:
                return tr("The server at %1 did not answer in time.");
            case HttpFailure::ClosedEarly:
                return tr("The server at %1 closed the connection before its answer was complete.");
            case HttpFailure::TooLong:
                return tr("The answer of the server at %1 is too long.");
            case HttpFailure::Failed:
                break;
        }
        return tr("The connection to %1 failed.");
    }
};

QString serverName(const QUrl& url) {
    return url.port() < 0 ? url.host() : url.host() + u':' + QString::number(url.port());
}

}  // namespace

TransportError transportError(HttpFailure failure, const QUrl& url, const QString& domain,
                              long code, const QString& detail) {
    const bool isNamed = failure != HttpFailure::NotAnAddress;
    return {domain,
            code,
            Sentences::of(failure).arg(isNamed ? serverName(url) : url.toDisplayString()),
            {{QStringLiteral("url"), url.toString(QUrl::FullyEncoded | QUrl::RemoveUserInfo)},
             {QStringLiteral("detail"), detail}}};
}

bool isHttp(const QUrl& url) {
    const bool isWeb =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return isWeb && !url.host().isEmpty();
}

}  // namespace quietlark
