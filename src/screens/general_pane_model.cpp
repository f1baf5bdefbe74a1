#include "screens/general_pane_model.h"

namespace quietlark {

GeneralPaneModel::GeneralPaneModel(AppState& appState, LoginItem& loginItem,
                                   NotificationCenter& notifications)
    : m_appState(appState),
      m_loginItem(loginItem),
      m_notifications(notifications),
      m_launchAtLogin(appState.config().launchAtLogin) {}

void GeneralPaneModel::setLaunchAtLogin(bool enabled) {
    if (enabled == m_launchAtLogin) return;
    const bool holds = LaunchAtLogin(m_loginItem).set(enabled);
    m_launchAtLogin = holds ? enabled : m_loginItem.status() == ServiceStatus::enabled;
    Config config = m_appState.config();
    config.launchAtLogin = m_launchAtLogin;
    m_appState.setConfig(config);
    // Also when nothing has come of it: the switch shows already what the user wanted.
    Q_EMIT launchAtLoginChanged(m_launchAtLogin);
}

void GeneralPaneModel::uninstall() {
    m_notifications.post(notification::uninstallRequested);
}

}  // namespace quietlark
