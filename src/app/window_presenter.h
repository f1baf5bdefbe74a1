#pragma once

#include <functional>

#include <QObject>

#include "app/app_windows.h"
#include "app/application_shell.h"

namespace quietlark {

/// Opens the windows and alerts, and keeps the application in the task bar as long as one of its
/// windows is open. Main thread.
class WindowPresenter final : public QObject {
    Q_OBJECT

public:
    WindowPresenter(AppWindows& windows, ApplicationShell& shell);

    void showOnboarding();
    void showPermissionsAlert();
    void openPrefs();
    void openServerPane();

    /// Both close and drop their window.
    void closeOnboarding();
    void closePermissionsAlert();

    /// Tells the user to install the program where it can stay.
    void showMoveToApplicationsAlert();

    /// Tells the user why the server on this computer does not start.
    void showServerStartFailure(const QString& description);

    /// Makes this the active application and asks whether the user is sure. `onAnswer` runs once.
    void askWhetherToUninstall(std::function<void(bool confirmed)> onAnswer);

    /// Tells the user why the program is still there. `onClosed` runs once, when that is read.
    void showRecycleFailure(const QString& description, std::function<void()> onClosed);

    /// Closes and drops every window.
    void closeAll();

private:
    void bringUp(AppWindows::Kind kind);
    void close(AppWindows::Kind kind);
    void updateActivationPolicy(bool willShowWindow);

    AppWindows& m_windows;
    ApplicationShell& m_shell;
};

}  // namespace quietlark
