#pragma once

#include <functional>

#include <QKeySequence>
#include <QMenu>

#include "platform/menu.h"

namespace quietlark {

/// The keystroke in Qt's terms, whose Ctrl is the Command key on macOS and Control elsewhere.
[[nodiscard]] QKeySequence keySequence(const KeyEquivalent& equivalent);

/// Replaces what `target` holds by the items of `menu`; `onChosen` runs when one is chosen.
void fillMenu(QMenu& target, const Menu& menu, const std::function<void(MenuAction)>& onChosen);

}  // namespace quietlark
