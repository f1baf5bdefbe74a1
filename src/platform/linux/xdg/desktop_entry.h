#pragma once

#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quietlark {

/// One argument of an Exec line, quoted so that the desktop passes `argument` on as it is ("The
/// Exec key" of the Desktop Entry Specification 1.5, and its escapes for values of type string).
[[nodiscard]] QString quotedForExec(const QString& argument);

/// The value of `key` in the group [Desktop Entry] of a desktop file, its escapes untouched;
/// nothing when there is no such key.
[[nodiscard]] std::optional<QString> desktopEntryValue(const QByteArray& file, const QString& key);

}  // namespace quietlark
