#include "app/local_server_reconciler.h"

namespace quietlark {

namespace {

bool isLocal(const ServerMode& mode) {
    return std::holds_alternative<Local>(mode);
}

}  // namespace

LocalServerReconciler::LocalServerReconciler(AppState& appState, DaemonRegistrar& registrar,
                                             StatusPresenter& status, WindowPresenter& windows)
    : m_appState(appState), m_registrar(registrar), m_status(status), m_windows(windows) {}

void LocalServerReconciler::noteServerMode() {
    m_lastServerMode = m_appState.config().serverMode;
}

void LocalServerReconciler::performLaunchActions() {
    const ServerMode& mode = m_appState.config().serverMode;
    if (std::holds_alternative<Unconfigured>(mode)) return;
    if (isLocal(mode)) return prepareLocalServer();
    const ServiceStatus status = m_appState.daemon().status();
    if (status == ServiceStatus::enabled || status == ServiceStatus::requiresApproval) {
        m_registrar.unregisterAndRefresh();
    }
}

void LocalServerReconciler::prepareLocalServer() {
    const ServiceStatus status = m_appState.daemon().status();
    if (!m_appState.localServer().modelIsInstalled()) {
        // It would only fail, again and again, for want of the model.
        if (status == ServiceStatus::enabled) m_registrar.unregister();
        return m_appState.modelDownloader().start();
    }
    switch (status) {
        case ServiceStatus::notRegistered:
        case ServiceStatus::notFound:
            return m_registrar.registerDaemon();
        case ServiceStatus::enabled:
            return m_registrar.refreshIfBundleChanged();
        case ServiceStatus::requiresApproval:
            return m_windows.openServerPane();
    }
}

void LocalServerReconciler::handleServerModeChange(const Config& newConfig) {
    const bool wasLocal = isLocal(m_lastServerMode);
    m_lastServerMode = newConfig.serverMode;
    const bool nowLocal = isLocal(newConfig.serverMode);
    if (nowLocal && !wasLocal) performLaunchActions();
    if (wasLocal && !nowLocal) m_registrar.unregisterAndRefresh();
}

void LocalServerReconciler::onModelReady() {
    if (!isLocal(m_appState.config().serverMode)) return;
    const ServiceStatus status = m_appState.daemon().status();
    if (status == ServiceStatus::notRegistered || status == ServiceStatus::notFound) {
        m_registrar.registerDaemon();
    } else {
        m_status.refresh();
    }
}

void LocalServerReconciler::onApproved() {
    const bool isWanted = isLocal(m_appState.config().serverMode);
    if (isWanted && m_appState.localServer().modelIsInstalled()) m_registrar.registerDaemon();
}

}  // namespace quietlark
