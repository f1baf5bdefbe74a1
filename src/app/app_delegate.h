#pragma once

#include <functional>
#include <optional>

#include <QObject>

#include "app/app_windows.h"
#include "app/application_shell.h"
#include "app/bundle.h"
#include "app/daemon_registrar.h"
#include "app/dictation_hotkeys.h"
#include "app/local_server_reconciler.h"
#include "app/permissions_watch.h"
#include "app/status_presenter.h"
#include "app/uninstall.h"
#include "app/window_presenter.h"
#include "notifications/notification_center.h"
#include "permissions/permissions.h"
#include "platform/key_event_source.h"
#include "platform/scheduler.h"
#include "platform/status_item.h"
#include "state/app_state.h"

namespace quietlark {

/// The application's conduct: what it does at its launch, and how it reacts to the settings, the
/// permissions, the local server, its model and dictation. Acts on changes, not on states. Lives as
/// long as the process; main thread.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    /// What the user sees of the application.
    struct Desktop {
        StatusItem& statusItem;
        AppWindows& windows;
        ApplicationShell& shell;
    };

    /// What the application finds on this computer.
    struct Computer {
        KeyEventSource& keyboard;
        Permissions& permissions;
        Uninstall::Computer traces;  ///< what the application leaves on it
    };

    /// Does nothing yet but read the permissions.
    AppDelegate(AppState& appState, const Desktop& desktop, const Computer& computer,
                NotificationCenter& notifications, Scheduler& scheduler);

    /// Starts the application's work; once, when the event loop runs or is about to.
    void applicationDidFinishLaunching();

    /// The user has started the program once more. Opens Preferences unless a window of the
    /// application is visible already; the request is always handled.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);

    /// Replaces the hotkeys by what the settings say; a spec that does not parse means none.
    void reloadHotkeys();

    /// Asks the user, and removes the application from this computer if that is the answer; the
    /// process ends with that.
    void uninstall();

Q_SIGNALS:
    /// The hotkeys are those of the settings now; `complaints` says of each that does not parse
    /// why.
    void hotkeysLoaded(const quietlark::DictationHotkeys& hotkeys, const QStringList& complaints);

private:
    void subscribe();
    void showWhatIsMissing();
    void onMainQueue(std::function<void()> action);

    void stop();
    void refresh();
    void onNotification(const QString& name);
    void onApprovalRequired();
    void finishOnboarding();
    void perform(MenuAction action);

    AppState& m_appState;
    const Desktop m_desktop;
    KeyEventSource& m_keyboard;
    Permissions& m_permissions;
    NotificationCenter& m_notifications;
    Scheduler& m_scheduler;

    Bundle m_bundle;
    StatusPresenter m_status;
    WindowPresenter m_windows;
    DaemonRegistrar m_registrar;
    LocalServerReconciler m_reconciler;
    PermissionsWatch m_watch;
    Uninstall m_uninstall;
    bool m_isStopped = false;
    std::optional<DictationHotkeys> m_hotkeys;  ///< absent until first loaded
    std::optional<ModelDownloader::State> m_lastDownload;
    Cancellable m_configCancellable;
};

}  // namespace quietlark
