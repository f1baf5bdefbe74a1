#include "transcription/endpoint_file.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "platform/regular_file.h"
#include "transcription/utf8.h"

namespace quietlark {

namespace {

const QString usualPath = QStringLiteral("/tmp/quietlark.endpoint");

constexpr QLatin1String localKey("local");
constexpr QLatin1String displayKey("display");
constexpr QLatin1String rtfKey("rtf");

// The server writes three short lines.
constexpr qsizetype maxFileBytes = 64 * 1024;

bool isSpaceOrTab(QChar character) {
    return character == u' ' || character == u'\t';
}

QStringView trimSpacesAndTabs(QStringView text) {
    while (!text.isEmpty() && isSpaceOrTab(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isSpaceOrTab(text.back()))
        text.chop(1);
    return text;
}

bool isLineEnd(QChar character) {
    return character == u'\n' || character == u'\r';
}

/// Cuts the first line off `text`, its end with it.
QStringView takeLine(QStringView& text) {
    qsizetype length = 0;
    while (length < text.size() && !isLineEnd(text[length]))
        ++length;
    const QStringView line = text.first(length);
    text = text.sliced(std::min(length + 1, text.size()));
    return line;
}

/// Empty where the line has none.
QStringView keyOf(QStringView line) {
    return trimSpacesAndTabs(line.first(std::max<qsizetype>(line.indexOf(u'='), 0)));
}

/// A finite decimal number that takes up the whole text, whatever the locale.
std::optional<double> parseDouble(const QString& text) {
    const QByteArray digits = text.toUtf8();
    const char* first = digits.constData();
    const char* const last = first + digits.size();
    // from_chars() knows the minus sign alone.
    if (digits.startsWith('+') && !digits.startsWith("+-")) ++first;
    double number = 0;
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc() || end != last || !std::isfinite(number)) return std::nullopt;
    return number;
}

}  // namespace

EndpointFile::EndpointFile(QString path) : m_path(std::move(path)) {}

QString EndpointFile::defaultPath() {
    return qEnvironmentVariable("QUIETLARK_ENDPOINT_FILE", usualPath);
}

std::optional<QString> EndpointFile::read() const {
    return nonEmptyValue(localKey);
}

std::optional<QString> EndpointFile::readDisplay() const {
    auto display = nonEmptyValue(displayKey);
    return display ? display : read();
}

std::optional<double> EndpointFile::readRTF() const {
    const auto rtf = nonEmptyValue(rtfKey);
    return rtf ? parseDouble(*rtf) : std::nullopt;
}

bool EndpointFile::isDistrusted() const {
    return !readRegularFile(m_path, maxFileBytes, FileTrust::OwnerAndRoot) &&
           readRegularFile(m_path, maxFileBytes, FileTrust::Anyone);
}

bool EndpointFile::isServers() const {
    if (m_path == usualPath) return true;
    const auto content = readRegularFile(m_path, maxFileBytes, FileTrust::OwnerAndRoot);
    const auto text = content ? decodeUtf8(*content) : std::nullopt;
    if (!text || !read()) return false;
    for (QStringView rest = *text; !rest.isEmpty();) {
        const QStringView key = keyOf(takeLine(rest));
        if (key != localKey && key != displayKey && key != rtfKey) return false;
    }
    return true;
}

std::optional<EndpointFile::Pairs> EndpointFile::dict() const {
    const auto content = readRegularFile(m_path, maxFileBytes, FileTrust::OwnerAndRoot);
    if (!content) return std::nullopt;
    const auto text = decodeUtf8(*content);
    if (!text) return std::nullopt;
    Pairs pairs;
    for (QStringView rest = *text; !rest.isEmpty();) {
        const QStringView line = takeLine(rest);
        const QStringView key = keyOf(line);
        if (key.isEmpty()) continue;
        const QStringView value = line.sliced(line.indexOf(u'=') + 1);
        pairs[key.toString()] = trimSpacesAndTabs(value).toString();
    }
    if (pairs.isEmpty()) return std::nullopt;
    return pairs;
}

std::optional<QString> EndpointFile::nonEmptyValue(const QString& key) const {
    const auto pairs = dict();
    if (!pairs) return std::nullopt;
    const QString value = pairs->value(key);
    if (value.isEmpty()) return std::nullopt;
    return value;
}

}  // namespace quietlark
