#include "transcription/transcriber.h"

#include <algorithm>
#include <string_view>

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace quietlark::Transcriber {

namespace {

bool isHarmful(QChar character) {
    const char16_t code = character.unicode();
    const bool isControl = code < 0x20 || (code >= 0x7f && code <= 0x9f);
    const bool isEmbeddingOrOverride = code >= 0x202a && code <= 0x202e;
    const bool isIsolate = code >= 0x2066 && code <= 0x2069;
    return isControl || isEmbeddingOrOverride || isIsolate;
}

/// Takes no room, and says nothing to the letters beside it.
bool isWidthless(QChar character) {
    constexpr std::u16string_view marks = u"\u00ad\u061c\u200b\u200e\u200f\ufeff";
    const char16_t code = character.unicode();
    return marks.find(code) != marks.npos || (code >= 0x2060 && code <= 0x2064);
}

/// Whether the character shows by itself. Some letters and a symbol are empty by design.
bool isSeen(char32_t character) {
    constexpr std::u32string_view empty = U"\u115f\u1160\u2800\u3164\uffa0";
    switch (QChar::category(character)) {
        case QChar::Mark_NonSpacing:
        case QChar::Mark_Enclosing:
        case QChar::Other_Format:
        case QChar::Other_Surrogate:
        case QChar::Separator_Space:
            return false;
        default:
            return empty.find(character) == empty.npos;
    }
}

}  // namespace

FormFields formFields(ServerFlavor flavor, const std::optional<QString>& model,
                      const QString& language) {
    FormFields fields;
    if (flavor == ServerFlavor::whispercpp) {
        fields.emplace_back(QStringLiteral("response_format"), QStringLiteral("json"));
    } else {
        fields.emplace_back(QStringLiteral("model"), model.value_or(QStringLiteral("whisper-1")));
    }
    if (!language.isEmpty()) fields.emplace_back(QStringLiteral("language"), language);
    return fields;
}

QByteArray multipartBody(const QByteArray& boundary, std::span<const std::uint8_t> wav,
                         const FormFields& fields) {
    QByteArray head;
    for (const auto& [name, value] : fields) {
        head += "--" + boundary + "\r\n";
        head += "Content-Disposition: form-data; name=\"" + name.toUtf8() + "\"\r\n\r\n";
        head += value.toUtf8() + "\r\n";
    }
    head += "--" + boundary + "\r\n";
    head += "Content-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n";
    head += "Content-Type: audio/wav\r\n\r\n";
    const QByteArray tail = "\r\n--" + boundary + "--\r\n";

    QByteArray body;
    body.reserve(head.size() + static_cast<qsizetype>(wav.size()) + tail.size());
    body += head;
    body.append(reinterpret_cast<const char*>(wav.data()), static_cast<qsizetype>(wav.size()));
    body += tail;
    return body;
}

std::optional<QString> parseTextField(const QByteArray& body) {
    const QJsonValue text = QJsonDocument::fromJson(body).object().value(QLatin1String("text"));
    if (!text.isString()) return std::nullopt;
    return text.toString();
}

QString clean(const QString& text) {
    static const QRegularExpression nonSpeechMarker(QStringLiteral("\\[[ A-Z_]+\\]"));
    // simplified() folds the characters of Unicode's White_Space property, and trims.
    return QString(text).remove(nonSpeechMarker).simplified();
}

QString withoutControlCharacters(const QString& text) {
    if (std::none_of(text.begin(), text.end(), isHarmful)) return text;
    QString harmless = text;
    harmless.removeIf(isHarmful);
    // What stood between two spaces, or at an end, leaves them without their neighbour.
    return harmless.simplified();
}

QString plainLine(const QString& text) {
    // Folded first, as a line end is a control character too.
    QString line = withoutControlCharacters(text.simplified());
    line.removeIf(isWidthless);
    const auto characters = line.toUcs4();
    return std::ranges::any_of(characters, isSeen) ? line.simplified() : QString();
}

}  // namespace quietlark::Transcriber
