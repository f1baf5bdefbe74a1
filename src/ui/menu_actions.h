#pragma once

#include <functional>
#include <vector>

#include <QWidget>

#include "platform/menu.h"

namespace quietlark {

/// Makes the keystrokes of `menus` work in a window. Text fields know the editing ones themselves;
/// those of the window system are carried out here, and `onChosen` gets the application's own.
void addMenuActions(QWidget& window, const std::vector<Menu>& menus,
                    const std::function<void(MenuAction)>& onChosen);

}  // namespace quietlark
