#include "picker/network_text.h"

#include "transcription/transcriber.h"

namespace quietlark {

QString shownNetworkText(const QString& text, qsizetype maxLength) {
    QString shown = Transcriber::plainLine(text);
    if (shown.size() <= maxLength) return shown;
    shown.truncate(maxLength - 1);
    if (!shown.isEmpty() && shown.back().isHighSurrogate()) shown.chop(1);
    return shown + u'…';
}

QString shownAddress(const QString& host, qint64 port) {
    return shownNetworkText(host) + u':' + QString::number(port);
}

QString shownServerName(const QString& name, const QString& host, qint64 port) {
    const QString shown = shownNetworkText(name);
    return shown.isEmpty() ? shownAddress(host, port) : shown;
}

}  // namespace quietlark
