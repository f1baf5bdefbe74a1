#pragma once

#include <functional>
#include <vector>

#include <QByteArray>
#include <QString>

#include "platform/posix/descriptor.h"

namespace quietlark {

/// The functions here go by open directories, so that nobody can put another one in the way, and
/// follow no link below the directory that they are given.

/// Whether something is mounted on the directory, or it is the root of everything.
[[nodiscard]] bool isMountPoint(const Descriptor& directory);

/// Opens the folder `name` in `directory`. Not open where there is none, or it is a link, another
/// user's or a mount point.
[[nodiscard]] Descriptor openOwnFolder(const Descriptor& directory, const QByteArray& name);

/// Whether `directory` is the one at `path`, or one above that, by way of links or not.
[[nodiscard]] bool isAtOrAbove(const Descriptor& directory, const QString& path);

/// What is in the directory, all at once, since removing any of it might disturb the reading.
[[nodiscard]] std::vector<QByteArray> entryNames(const Descriptor& directory);

using EntryFilter = std::function<bool(const QByteArray& name)>;

/// Removes the entries that the filter lets through, folders with everything in them. Stays that is
/// another user's, a mount point or out of reach, and the folders that hold it.
void removeOwnEntries(const Descriptor& directory, const EntryFilter& isWanted);

}  // namespace quietlark
