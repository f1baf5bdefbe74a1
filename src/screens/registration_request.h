#pragma once

#include "notifications/notification_center.h"
#include "state/app_state.h"

namespace quietlark {

/// The user has chosen a server. Where it is the one on this computer again, which could not be
/// registered before, nothing else would try once more: has the application register it. Main
/// thread.
void requestMissingRegistration(AppState& appState, NotificationCenter& notifications);

}  // namespace quietlark
