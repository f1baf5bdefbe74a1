#include "app/permissions_watch.h"

#include <utility>

namespace quietlark {

PermissionsWatch::PermissionsWatch(const Permissions& permissions, const DaemonController& daemon,
                                   Scheduler& scheduler)
    : m_permissions(permissions), m_daemon(daemon), m_scheduler(scheduler) {
    const Permissions::Status status = m_permissions.status();
    m_lastInputMonitoring = status.inputMonitoring;
    m_lastAllPerms = status.allGranted();
}

void PermissionsWatch::start() {
    m_permTimer = m_scheduler.every(interval, [this] { tick(); });
}

void PermissionsWatch::stop() {
    m_permTimer.cancel();
}

void PermissionsWatch::noteDaemonStatus() {
    m_lastDaemonStatus = m_daemon.status();
}

void PermissionsWatch::tick() {
    const Permissions::Status status = m_permissions.status();
    const bool hadInputMonitoring = std::exchange(m_lastInputMonitoring, status.inputMonitoring);
    if (status.inputMonitoring && !hadInputMonitoring) Q_EMIT inputMonitoringGranted();

    const bool hadAllPerms = std::exchange(m_lastAllPerms, status.allGranted());
    if (hadAllPerms && !status.allGranted()) Q_EMIT permissionsLost();

    const ServiceStatus before = std::exchange(m_lastDaemonStatus, m_daemon.status());
    const bool awaited = before == ServiceStatus::requiresApproval;
    const bool awaits = m_lastDaemonStatus == ServiceStatus::requiresApproval;
    if (awaits && !awaited) Q_EMIT approvalRequired();
    // A service that is gone altogether has not been allowed.
    if (awaited && !awaits && m_lastDaemonStatus != ServiceStatus::notFound) Q_EMIT approvalGiven();
    Q_EMIT ticked();
}

}  // namespace quietlark
