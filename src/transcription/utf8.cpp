#include "transcription/utf8.h"

#include <QStringDecoder>

namespace quietlark {

std::optional<QString> decodeUtf8(QByteArrayView bytes) {
    // Stateless, so that a character cut off at the end is an error too.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError()) return std::nullopt;
    return text;
}

}  // namespace quietlark
