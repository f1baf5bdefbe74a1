#include "screens/permission_poll.h"

#include <utility>

namespace quietlark {

PermissionPoll::PermissionPoll(const Permissions& permissions, Scheduler& scheduler)
    : m_permissions(permissions), m_scheduler(scheduler), m_status(permissions.status()) {}

void PermissionPoll::start() {
    m_timer = m_scheduler.every(interval, [this] { tick(); });
}

void PermissionPoll::stop() {
    m_timer.cancel();
}

void PermissionPoll::tick() {
    const Permissions::Status now = m_permissions.status();
    if (std::exchange(m_status, now) != now) Q_EMIT changed();
    // What listens may close the window, and the poll with it.
    if (now.allGranted()) Q_EMIT allGranted();
}

}  // namespace quietlark
