#include "local_server/daemon_controller.h"

#include <utility>

namespace quietlark {

DaemonController::DaemonController(RegisteredService& service, SettingsPanes& panes,
                                   Scheduler& scheduler)
    : m_service(service), m_panes(panes), m_scheduler(scheduler) {}

ServiceStatus DaemonController::status() const {
    return m_service.status();
}

Cancellable DaemonController::registerService(RegisteredService::Done onDone) {
    return m_service.registerService(std::move(onDone));
}

Cancellable DaemonController::unregisterService(RegisteredService::Done onDone) {
    return m_service.unregisterService(std::move(onDone));
}

void DaemonController::refreshAfterDelay(std::chrono::milliseconds delay, QObject* context,
                                         std::function<void()> handler) {
    m_scheduler.after(delay, context, std::move(handler));
}

void DaemonController::openLoginItemsSettings() {
    m_panes.open(SettingsPane::LoginItems);
}

}  // namespace quietlark
