#pragma once

#include "app/daemon_registrar.h"
#include "app/status_presenter.h"
#include "app/window_presenter.h"
#include "config/config.h"
#include "state/app_state.h"

namespace quietlark {

/// Brings the local server, its model and its registration into line with the user's choice of
/// server. Acts when the choice changes, and does not insist on it. Main thread.
class LocalServerReconciler {
public:
    LocalServerReconciler(AppState& appState, DaemonRegistrar& registrar, StatusPresenter& status,
                          WindowPresenter& windows);

    /// Takes the present choice for the one before the next change.
    void noteServerMode();

    /// Does once what the present choice asks for.
    void performLaunchActions();

    /// For every change of the settings; only a change to or from the server on this computer does
    /// anything.
    void handleServerModeChange(const Config& newConfig);

    /// The model has been installed.
    void onModelReady();

    /// The user has allowed the server, which had been forbidden.
    void onApproved();

private:
    void prepareLocalServer();

    AppState& m_appState;
    DaemonRegistrar& m_registrar;
    StatusPresenter& m_status;
    WindowPresenter& m_windows;
    ServerMode m_lastServerMode;
};

}  // namespace quietlark
