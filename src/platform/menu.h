#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QString>

#include "platform/keys.h"

namespace quietlark {

/// What choosing a menu item does. The application itself performs `openPrefs` and `terminate`;
/// the others belong to the window system and its text fields.
enum class MenuAction {
    about,
    openPrefs,
    hide,
    hideOthers,
    unhideAll,
    terminate,
    closeWindow,
    undo,
    redo,
    cut,
    copy,
    paste,
    deleteSelection,
    selectAll,
    minimize,
    zoom,
    arrangeInFront,
};

/// The keystroke that stands for a menu item, such as Command-Q.
struct KeyEquivalent {
    QString key;  ///< one character, lower case
    ModifierFlags modifiers = modifier::command;

    bool operator==(const KeyEquivalent&) const = default;
};

/// One line of a menu.
struct MenuItem {
    QString title;
    std::optional<MenuAction> action;  ///< absent in a separator
    std::optional<KeyEquivalent> keyEquivalent;

    static MenuItem separator() { return {}; }
    [[nodiscard]] bool isSeparator() const { return !action; }
    bool operator==(const MenuItem&) const = default;
};

/// A menu as data, for whoever draws it.
struct Menu {
    enum class Role {
        ordinary,
        windows,  ///< the open windows are listed below the items
    };

    QString title;  ///< may be empty
    std::vector<MenuItem> items;
    Role role = Role::ordinary;

    bool operator==(const Menu&) const = default;
};

}  // namespace quietlark
