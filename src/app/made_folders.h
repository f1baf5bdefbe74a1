#pragma once

#include <QStringList>

#include "platform/own_files.h"
#include "platform/user_defaults.h"

namespace quietlark {

/// Remembers which of the folders that programs share are missing, so that removing the program can
/// take those away that its use may have made; others may have made them since, and nobody misses
/// an empty one. To be called before the program writes anything.
void noteMissingFolders(UserDefaults& defaults, const OwnFiles& files);

/// Those that were missing at one time or another.
[[nodiscard]] QStringList notedFolders(const UserDefaults& defaults);

}  // namespace quietlark
