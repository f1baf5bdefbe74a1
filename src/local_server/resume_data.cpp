#include "local_server/resume_data.h"

#include <algorithm>

#include <QJsonDocument>
#include <QJsonObject>

#include "platform/durable_file.h"
#include "platform/regular_file.h"

namespace quietlark {

namespace {

constexpr qsizetype maxFileBytes = 64 * 1024;

const QString urlKey = QStringLiteral("url");
const QString validatorKey = QStringLiteral("validator");
const QString totalBytesKey = QStringLiteral("totalBytes");
const QString syncedBytesKey = QStringLiteral("syncedBytes");
const QString bootSessionKey = QStringLiteral("bootSession");

std::optional<qint64> byteCount(const QJsonValue& value) {
    const qint64 bytes = value.toInteger(-1);
    if (bytes < 0) return std::nullopt;
    return bytes;
}

/// It becomes a header's value, which no file may end early.
bool isHeaderValue(const QString& text) {
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= u' ' && character <= u'~';
    });
}

}  // namespace

qint64 ResumeData::reliableBytes(qint64 fileBytes, const QString& currentBootSession) const {
    const bool isSameSession = !bootSession.isEmpty() && bootSession == currentBootSession;
    return isSameSession ? fileBytes : std::min(fileBytes, syncedBytes);
}

QByteArray ResumeData::toJson() const {
    QJsonObject object{{urlKey, url},
                       {validatorKey, QString::fromLatin1(validator)},
                       {syncedBytesKey, syncedBytes},
                       {bootSessionKey, bootSession}};
    if (totalBytes) object.insert(totalBytesKey, *totalBytes);
    return QJsonDocument(object).toJson().leftJustified(sectorBytes, ' ');
}

std::optional<ResumeData> ResumeData::fromJson(const QByteArray& json) {
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto syncedBytes = byteCount(object.value(syncedBytesKey));
    const auto totalBytes = byteCount(object.value(totalBytesKey));
    const QString validator = object.value(validatorKey).toString();
    if (!syncedBytes || !isHeaderValue(validator)) return std::nullopt;
    if (!totalBytes && object.contains(totalBytesKey)) return std::nullopt;
    return ResumeData{object.value(urlKey).toString(), validator.toLatin1(), totalBytes,
                      *syncedBytes, object.value(bootSessionKey).toString()};
}

std::optional<ResumeData> ResumeData::read(const QString& path) {
    const auto json = readRegularFile(path, maxFileBytes, FileTrust::Anyone);
    if (!json) return std::nullopt;
    return fromJson(*json);
}

}  // namespace quietlark
