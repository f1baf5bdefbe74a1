#pragma once

#include <vector>

#include <QObject>

#include "platform/menu.h"

namespace quietlark {

/// The application's windows. Main thread.
class AppWindows : public QObject {
    Q_OBJECT

public:
    enum class Kind { onboarding, permissionsAlert, preferences };

    /// Gives every window these menus, from left to right; where windows have no menu bar, their
    /// keystrokes.
    virtual void setMainMenu(const std::vector<Menu>& menus) = 0;

    /// Brings the window to the front and makes it the active one; it is made if there is none.
    virtual void show(Kind kind) = 0;

    /// As show(Kind::preferences), with the Server tab chosen.
    virtual void showServerTab() = 0;

    /// Closes the window and drops it, so that the next one starts afresh. Harmless without one.
    virtual void close(Kind kind) = 0;

    [[nodiscard]] virtual bool isVisible(Kind kind) const = 0;

Q_SIGNALS:
    /// A window has gone from the screen, whoever closed it.
    void closed(quietlark::AppWindows::Kind kind);

    /// The user has come to the end of the onboarding, whose result is in the settings.
    void onboardingFinished();

    /// The permissions alert finds that nothing is missing any more.
    void allPermissionsGranted();

    /// The user has chosen an item of the main menu.
    void chosen(quietlark::MenuAction action);
};

}  // namespace quietlark
