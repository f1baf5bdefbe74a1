#pragma once

#include <QByteArray>
#include <QString>
#include <tl/expected.hpp>

namespace quietlark {

/// Removes that file, or that link and not what it leads to, if it belongs to the user whom this
/// process acts for. Nothing there is no failure; a folder, or what is another user's, stays, and
/// is one. A failure is the system's description. Any thread.
tl::expected<void, QString> removeOwnFile(const QString& path);

/// Removes that link, if it still is one to `target`, as it is written in it, and belongs to the
/// user whom this process acts for. What else is there by now stays. Any thread.
void removeOwnLink(const QString& path, const QByteArray& target);

/// Whether the directory, or the one that it would be made in where it is not there yet, belongs to
/// the user whom this process acts for, be it by way of links. Any thread.
[[nodiscard]] bool isOwnPlace(const QString& directory);

/// Whether what this process writes there would be among another user's files and not theirs: as
/// root's, who may write everywhere, in the home directory of the one who has called for it.
[[nodiscard]] bool wouldWriteAmongOthersFiles(const QString& directory);

}  // namespace quietlark
