#pragma once

#include <QByteArray>
#include <QString>
#include <tl/expected.hpp>

namespace quietlark {

/// Nothing, or the system's description of what went wrong.
using FileOutcome = tl::expected<void, QString>;

/// Waits until what was written to an open file would survive a power cut. Any thread.
[[nodiscard]] FileOutcome syncFile(int descriptor);

/// The same for the names in a directory.
[[nodiscard]] FileOutcome syncDirectory(const QString& directory);

/// Puts `from` in the place of `to` in one step: at every moment `to` is the old file or the new
/// one. Fails where `to` is a directory.
[[nodiscard]] FileOutcome replaceFile(const QString& from, const QString& to);

/// Writes a small file so that it holds the old content or the new, also after a power cut. Goes
/// through a file of the same name with ".new" behind it.
[[nodiscard]] FileOutcome writeFileDurably(const QString& path, const QByteArray& content);

/// What disks write whole or not at all.
inline constexpr qsizetype sectorBytes = 512;

/// The same, in a third of the time where the file holds as many bytes already, and no more than
/// sectorBytes: it is overwritten where it is.
[[nodiscard]] FileOutcome rewriteFileDurably(const QString& path, const QByteArray& content);

/// Removes what these leave beside the file when they are killed.
void removeLeftover(const QString& path);

}  // namespace quietlark
