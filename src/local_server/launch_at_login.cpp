#include "local_server/launch_at_login.h"

namespace quietlark {

bool LaunchAtLogin::set(bool enabled) {
    const bool isEnabled = m_item.status() == ServiceStatus::enabled;
    if (isEnabled == enabled) return true;
    return (enabled ? m_item.registerItem() : m_item.unregisterItem()).has_value();
}

}  // namespace quietlark
