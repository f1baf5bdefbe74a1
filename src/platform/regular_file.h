#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace quietlark {

/// Whose file is believed.
enum class FileTrust {
    Anyone,        ///< any file that can be read, also through a symbolic link
    OwnerAndRoot,  ///< one that belongs to this user or root, that nobody else may write, no link
};

/// Reads a whole regular file of at most `maxBytes` bytes. Absent when there is no such file, it
/// cannot be read, is longer, or is not trusted. A pipe or device under that name is absent too,
/// and never waited for. Any thread.
[[nodiscard]] std::optional<QByteArray> readRegularFile(const QString& path, qsizetype maxBytes,
                                                        FileTrust trust);

}  // namespace quietlark
