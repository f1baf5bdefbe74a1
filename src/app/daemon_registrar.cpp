#include "app/daemon_registrar.h"

#include <utility>

namespace quietlark {

DaemonRegistrar::DaemonRegistrar(DaemonController& daemon, Bundle& bundle, StatusPresenter& status,
                                 WindowPresenter& windows)
    : m_daemon(daemon), m_bundle(bundle), m_status(status), m_windows(windows) {}

void DaemonRegistrar::registerDaemon() {
    if (!m_bundle.isInApplications()) return m_windows.showMoveToApplicationsAlert();
    if (m_underWay == UnderWay::registering) return;
    callOff();
    m_underWay = UnderWay::registering;
    m_request = m_daemon.registerService([this](const auto& result) { onRegistered(result); });
}

void DaemonRegistrar::afterPause(std::chrono::milliseconds pause, std::function<void()> action) {
    m_pause = std::make_unique<QObject>();
    m_daemon.refreshAfterDelay(pause, m_pause.get(), std::move(action));
}

void DaemonRegistrar::onRegistered(const tl::expected<void, ServiceError>& result) {
    m_underWay = UnderWay::nothing;
    if (!result) return m_windows.showServerStartFailure(result.error().localizedDescription);
    m_bundle.rememberRegisteredExecutable();
    afterPause(settleDelay, [this] { onSettled(); });
}

void DaemonRegistrar::onSettled() {
    m_status.refresh();
    if (m_daemon.status() == ServiceStatus::requiresApproval) m_windows.openServerPane();
}

void DaemonRegistrar::refreshIfBundleChanged() {
    // Requests are carried out in their order, so that it is registered in the end.
    if (m_underWay == UnderWay::takingBack) return registerDaemon();
    if (m_bundle.isRegisteredExecutable()) return;
    callOff();
    m_request = m_daemon.unregisterService([this](const auto& result) {
        // What is still registered goes on as it is.
        if (!result && m_daemon.status() == ServiceStatus::enabled) return;
        afterPause(replacementPause, [this] { registerReplacement(); });
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
    m_underWay = UnderWay::takingBack;
    m_request = m_daemon.unregisterService([this](const auto&) { m_underWay = UnderWay::nothing; });
}

void DaemonRegistrar::unregisterAndRefresh() {
    unregister();
    afterPause(settleDelay, [this] { m_status.refresh(); });
}

void DaemonRegistrar::callOff() {
    m_request.cancel();
    m_underWay = UnderWay::nothing;
    m_pause.reset();
}

}  // namespace quietlark
