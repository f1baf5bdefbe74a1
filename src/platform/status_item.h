#pragma once

#include <QObject>
#include <QString>

#include "platform/menu.h"

namespace quietlark {

/// The program's place in the desktop's status bar: one symbol and a menu. Main thread.
class StatusItem : public QObject {
    Q_OBJECT

public:
    /// Puts it into the status bar, and again whenever a status bar appears from now on. Until
    /// then nothing is seen of it.
    virtual void show() = 0;

    /// Shows a symbol in place of the one before. `name` is one of the drawings' names, such as
    /// "bubble.left".
    virtual void setSymbol(const QString& name) = 0;

    /// Replaces the menu's items.
    virtual void setMenu(const Menu& menu) = 0;

Q_SIGNALS:
    /// The menu is about to open; what setMenu() sets now is what opens.
    void menuNeedsUpdate();

    /// The user has chosen an item of the menu.
    void chosen(quietlark::MenuAction action);
};

}  // namespace quietlark
