#include "app/daemon_registrar.h"

namespace quietlark {

DaemonRegistrar::DaemonRegistrar(DaemonController& daemon, Bundle& bundle, StatusPresenter& status,
                                 WindowPresenter& windows)
    : m_daemon(daemon), m_bundle(bundle), m_status(status), m_windows(windows) {}

void DaemonRegistrar::registerDaemon() {
    if (!m_bundle.isInApplications()) return m_windows.showMoveToApplicationsAlert();
    callOff();
    m_request = m_daemon.registerService([this](const auto& result) { onRegistered(result); });
}

void DaemonRegistrar::onRegistered(const tl::expected<void, ServiceError>& result) {
    if (!result) return m_windows.showServerStartFailure(result.error().localizedDescription);
    m_bundle.rememberRegisteredExecutable();
    m_daemon.refreshAfterDelay(settleDelay, this, [this] { onSettled(); });
}

void DaemonRegistrar::onSettled() {
    m_status.refresh();
    if (m_daemon.status() == ServiceStatus::requiresApproval) m_windows.openServerPane();
}

void DaemonRegistrar::refreshIfBundleChanged() {
    if (m_bundle.isRegisteredExecutable()) return;
    callOff();
    m_request = m_daemon.unregisterService([this](const auto& result) {
        if (!result) return;
        m_pause = std::make_unique<QObject>();
        m_daemon.refreshAfterDelay(replacementPause, m_pause.get(),
                                   [this] { registerReplacement(); });
    });
}

void DaemonRegistrar::registerReplacement() {
    m_request = m_daemon.registerService([this](const auto& result) {
        if (result) m_bundle.rememberRegisteredExecutable();
        m_status.refresh();
    });
}

void DaemonRegistrar::unregister() {
    callOff();
    m_request = m_daemon.unregisterService([](const auto&) {});
}

void DaemonRegistrar::unregisterAndRefresh() {
    unregister();
    m_daemon.refreshAfterDelay(settleDelay, this, [this] { m_status.refresh(); });
}

void DaemonRegistrar::callOff() {
    m_request.cancel();
    m_pause.reset();
}

}  // namespace quietlark
