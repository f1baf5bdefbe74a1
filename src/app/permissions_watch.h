#pragma once

#include <chrono>

#include <QObject>

#include "local_server/daemon_controller.h"
#include "permissions/permissions.h"
#include "platform/scheduler.h"

namespace quietlark {

/// Looks every few seconds at what the system tells nobody about: the permissions, and whether the
/// local server waits for the user. Reports what has changed, once each. Main thread.
class PermissionsWatch final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds interval{3000};

    /// Takes the present permissions for those before the first look.
    PermissionsWatch(const Permissions& permissions, const DaemonController& daemon,
                     Scheduler& scheduler);

    /// Looks from one interval on; a watch that is running begins anew.
    void start();
    void stop();

    /// Takes the server's present status for the one before the next look.
    void noteDaemonStatus();

    /// Looks now.
    void tick();

Q_SIGNALS:
    /// In this order within one look.
    void inputMonitoringGranted();
    /// All permissions were there at the look before, and now are not.
    void permissionsLost();
    void approvalRequired();
    /// The user has allowed the local server, which does not start by that alone.
    void approvalGiven();
    /// After every look.
    void ticked();

private:
    const Permissions& m_permissions;
    const DaemonController& m_daemon;
    Scheduler& m_scheduler;
    bool m_lastInputMonitoring;
    bool m_lastAllPerms;
    ServiceStatus m_lastDaemonStatus = ServiceStatus::notRegistered;
    Cancellable m_permTimer;
};

}  // namespace quietlark
