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

}  // namespace quietlark
