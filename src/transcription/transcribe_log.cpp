#include "transcription/transcribe_log.h"

#include <QStringList>
#include <QTextBoundaryFinder>

namespace quietlark::transcribe_log {

namespace {

// Of our own errors, for those that have no layer below to speak for them.
constexpr QLatin1String ownDomain("TranscriberError");

QString secondsText(Elapsed elapsed) {
    return QString::number(elapsed.count(), 'f', 2) + u's';
}

qsizetype characterCount(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

QString userInfoText(const QMap<QString, QString>& userInfo) {
    QStringList pairs;
    for (auto entry = userInfo.begin(); entry != userInfo.end(); ++entry) {
        pairs.append(entry.key() + QStringLiteral(" = ") + entry.value());
    }
    return u'{' + pairs.join(QStringLiteral("; ")) + u'}';
}

QString detailText(const QString& domain, long code, const QString& description,
                   const QMap<QString, QString>& userInfo) {
    return domain + u'#' + QString::number(code) + u' ' + description +
           QStringLiteral(" userInfo=") + userInfoText(userInfo);
}

/// What follows the colon. A number of our own is the error's place in TranscriberError.
struct Detail {
    const TranscriberError& error;

    QString operator()(const TranscriberError::InvalidResponse&) const {
        return QStringLiteral("invalidResponse");
    }
    QString operator()(const TranscriberError::RequestFailed& failure) const {
        return QStringLiteral("HTTP %1 body=").arg(failure.status) + failure.body;
    }
    QString operator()(const TransportError& transport) const {
        return detailText(transport.domain, transport.code, transport.description,
                          transport.userInfo);
    }
    template <typename Other>
    QString operator()(const Other&) const {
        return detailText(ownDomain, static_cast<long>(error.reason.index()),
                          error.localizedDescription(), {});
    }
};

}  // namespace

std::string startLine(const ResolvedServer& server, std::size_t wavBytes, const QString& language) {
    const QString line = QStringLiteral("transcribe start: url=") +
                         server.url.toString(QUrl::FullyEncoded) + QStringLiteral(" flavor=") +
                         rawValue(server.flavor) + QStringLiteral(" wavBytes=") +
                         QString::number(wavBytes) + QStringLiteral(" lang=") + language;
    return line.toStdString();
}

std::string okLine(Elapsed elapsed, const QString& text) {
    const QString line = QStringLiteral("transcribe ok: ") + secondsText(elapsed) +
                         QStringLiteral(" chars=") + QString::number(characterCount(text));
    return line.toStdString();
}

std::string failedLine(Elapsed elapsed, const TranscriberError& error) {
    const QString line = QStringLiteral("transcribe failed after ") + secondsText(elapsed) +
                         QStringLiteral(": ") + std::visit(Detail{error}, error.reason);
    return line.toStdString();
}

}  // namespace quietlark::transcribe_log
