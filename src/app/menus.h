#pragma once

#include <vector>

#include <QString>

#include "platform/menu.h"

namespace quietlark {

/// The status item's menu. It tells nothing of the program's state: the symbol does.
[[nodiscard]] Menu statusMenu();

/// The application's main menu from left to right, in place while one of its windows is active.
/// Its Edit menu makes the usual keystrokes work in the windows' text fields.
[[nodiscard]] std::vector<Menu> buildMainMenu(const QString& processName);

}  // namespace quietlark
