#pragma once

#include <QObject>

#include "local_server/launch_at_login.h"
#include "notifications/notification_center.h"
#include "platform/login_item.h"
#include "state/app_state.h"

namespace quietlark {

/// The switch and the button of Preferences that concern the program as a whole. Main thread.
class GeneralPaneModel final : public QObject {
    Q_OBJECT

public:
    GeneralPaneModel(AppState& appState, LoginItem& loginItem, NotificationCenter& notifications);

    [[nodiscard]] bool launchAtLogin() const { return m_launchAtLogin; }

    /// Asks the desktop for it. Where that fails the switch goes to where the desktop has it.
    void setLaunchAtLogin(bool enabled);

    /// Has the application ask the user and remove itself.
    void uninstall();

Q_SIGNALS:
    void launchAtLoginChanged(bool enabled);

private:
    AppState& m_appState;
    LoginItem& m_loginItem;
    NotificationCenter& m_notifications;
    bool m_launchAtLogin;
};

}  // namespace quietlark
