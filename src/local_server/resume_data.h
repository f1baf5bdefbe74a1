#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace quietlark {

/// What has to be known about a download that was broken off, to continue it: a small JSON file
/// beside the bytes that have been received.
struct ResumeData {
    QString url;                       ///< where it was asked for, before redirects
    QByteArray validator;              ///< strong entity tag or date, as If-Range takes it
    std::optional<qint64> totalBytes;  ///< length of the whole file, if the server has said
    qint64 syncedBytes = 0;            ///< so many would survive a power cut
    QString bootSession;               ///< see bootSession()

    bool operator==(const ResumeData&) const = default;

    /// How much of a file of `fileBytes` can be relied on: all of it as long as the computer has
    /// not been started anew, else what was synced.
    [[nodiscard]] qint64 reliableBytes(qint64 fileBytes, const QString& currentBootSession) const;

    /// As long as a disk's sector, if it fits, so that it can be rewritten in one.
    [[nodiscard]] QByteArray toJson() const;
    /// Absent for anything that toJson() does not write.
    [[nodiscard]] static std::optional<ResumeData> fromJson(const QByteArray& json);
    /// Absent where there is no such file, or it holds something else. Any thread.
    [[nodiscard]] static std::optional<ResumeData> read(const QString& path);
};

}  // namespace quietlark
