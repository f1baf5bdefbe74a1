#include "ui/menu_actions.h"

#include <QAction>

#include "platform/qt_widgets/qt_menu.h"

namespace quietlark {

namespace {

/// What choosing the action does to `window`; nothing where it is none of the window's business.
std::function<void()> behaviour(QWidget& window, MenuAction action,
                                const std::function<void(MenuAction)>& onChosen) {
    switch (action) {
        case MenuAction::openPrefs:
        case MenuAction::terminate:
            return [onChosen, action] { onChosen(action); };
        case MenuAction::closeWindow:
            return [&window] { window.close(); };
        case MenuAction::minimize:
            return [&window] { window.showMinimized(); };
        default:
            return {};
    }
}

}  // namespace

void addMenuActions(QWidget& window, const std::vector<Menu>& menus,
                    const std::function<void(MenuAction)>& onChosen) {
    for (const Menu& menu : menus) {
        for (const MenuItem& item : menu.items) {
            if (!item.action || !item.keyEquivalent) continue;
            const auto behave = behaviour(window, *item.action, onChosen);
            if (!behave) continue;
            auto* action = new QAction(item.title, &window);
            action->setShortcut(keySequence(*item.keyEquivalent));
            QObject::connect(action, &QAction::triggered, action, behave);
            window.addAction(action);
        }
    }
}

}  // namespace quietlark
