#include "app/window_presenter.h"

#include <utility>

namespace quietlark {

WindowPresenter::WindowPresenter(AppWindows& windows, ApplicationShell& shell)
    : m_windows(windows), m_shell(shell) {
    connect(&m_windows, &AppWindows::closed, this, [this] { updateActivationPolicy(false); });
    connect(&m_windows, &AppWindows::allPermissionsGranted, this,
            &WindowPresenter::closePermissionsAlert);
}

void WindowPresenter::showOnboarding() {
    bringUp(AppWindows::Kind::onboarding);
}

void WindowPresenter::showPermissionsAlert() {
    bringUp(AppWindows::Kind::permissionsAlert);
}

void WindowPresenter::openPrefs() {
    bringUp(AppWindows::Kind::preferences);
}

void WindowPresenter::openServerPane() {
    updateActivationPolicy(true);
    m_windows.showServerTab();
}

void WindowPresenter::closeOnboarding() {
    close(AppWindows::Kind::onboarding);
}

void WindowPresenter::closePermissionsAlert() {
    close(AppWindows::Kind::permissionsAlert);
}

void WindowPresenter::showMoveToApplicationsAlert() {
    m_shell.show({Alert::Style::informational, tr("Move Quietlark to Applications"),
                  tr("Quietlark needs to live in your Applications folder so macOS can start the "
                     "background server reliably.\n\nQuit, drag Quietlark to Applications, then "
                     "open it from there."),
                  tr("OK")},
                 {});
}

void WindowPresenter::showServerStartFailure(const QString& description) {
    m_shell.show({Alert::Style::warning, tr("Couldn't start the server"), description, tr("OK")},
                 {});
}

void WindowPresenter::askWhetherToUninstall(std::function<void(bool confirmed)> onAnswer) {
    m_shell.activateIgnoringOtherApps();
    m_shell.ask({tr("Uninstall Quietlark?"),
                 tr("This will stop the background server, delete the downloaded model and all "
                    "settings, revoke granted permissions, and move Quietlark to the Trash. macOS "
                    "will prompt for your administrator password to revoke the permissions. You "
                    "can always reinstall by downloading the app again."),
                 tr("Uninstall"), tr("Cancel")},
                std::move(onAnswer));
}

void WindowPresenter::showRecycleFailure(const QString& description,
                                         std::function<void()> onClosed) {
    m_shell.show(
        {Alert::Style::warning, tr("Couldn't move Quietlark to the Trash"), description, tr("OK")},
        std::move(onClosed));
}

void WindowPresenter::closeAll() {
    using Kind = AppWindows::Kind;
    for (const Kind kind : {Kind::onboarding, Kind::permissionsAlert, Kind::preferences})
        close(kind);
}

void WindowPresenter::bringUp(AppWindows::Kind kind) {
    updateActivationPolicy(true);
    m_windows.show(kind);
}

void WindowPresenter::close(AppWindows::Kind kind) {
    m_windows.close(kind);
    updateActivationPolicy(false);
}

void WindowPresenter::updateActivationPolicy(bool willShowWindow) {
    using Kind = AppWindows::Kind;
    const bool inTaskBar = willShowWindow || m_windows.isVisible(Kind::preferences) ||
                           m_windows.isVisible(Kind::onboarding) ||
                           m_windows.isVisible(Kind::permissionsAlert);
    const auto policy = inTaskBar ? ActivationPolicy::regular : ActivationPolicy::accessory;
    if (policy != m_shell.activationPolicy()) m_shell.setActivationPolicy(policy);
    if (willShowWindow) m_shell.activateIgnoringOtherApps();
}

}  // namespace quietlark
