#include "screens/registration_request.h"

namespace quietlark {

void requestMissingRegistration(AppState& appState, NotificationCenter& notifications) {
    if (!std::holds_alternative<Local>(appState.config().serverMode)) return;
    // Without its model it would only fail; it is registered when that is there.
    if (!appState.localServer().modelIsInstalled()) return;
    const ServiceStatus status = appState.daemon().status();
    if (status == ServiceStatus::notRegistered || status == ServiceStatus::notFound)
        notifications.post(notification::registerDaemonRequested);
}

}  // namespace quietlark
