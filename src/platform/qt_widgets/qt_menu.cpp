#include "platform/qt_widgets/qt_menu.h"

namespace quietlark {

QKeySequence keySequence(const KeyEquivalent& equivalent) {
    QString text;
    if (equivalent.modifiers & modifier::control) text += QStringLiteral("Meta+");
    if (equivalent.modifiers & modifier::option) text += QStringLiteral("Alt+");
    if (equivalent.modifiers & modifier::shift) text += QStringLiteral("Shift+");
    if (equivalent.modifiers & modifier::command) text += QStringLiteral("Ctrl+");
    return QKeySequence::fromString(text + equivalent.key, QKeySequence::PortableText);
}

void fillMenu(QMenu& target, const Menu& menu, const std::function<void(MenuAction)>& onChosen) {
    target.clear();
    target.setTitle(menu.title);
    for (const MenuItem& item : menu.items) {
        if (item.isSeparator()) {
            target.addSeparator();
            continue;
        }
        QAction* const action = target.addAction(item.title);
        if (item.keyEquivalent) action->setShortcut(keySequence(*item.keyEquivalent));
        QObject::connect(action, &QAction::triggered, action,
                         [onChosen, chosen = *item.action] { onChosen(chosen); });
    }
}

}  // namespace quietlark
