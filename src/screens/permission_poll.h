#pragma once

#include <chrono>

#include <QObject>

#include "permissions/permissions.h"
#include "platform/cancellable.h"
#include "platform/scheduler.h"

namespace quietlark {

/// Looks every second whether the user has granted something, while a window shows it. Main thread.
class PermissionPoll final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds interval{1000};

    PermissionPoll(const Permissions& permissions, Scheduler& scheduler);

    /// As of the last look.
    [[nodiscard]] const Permissions::Status& status() const { return m_status; }

    /// Looks from one interval on; a poll that is running begins anew.
    void start();
    void stop();

Q_SIGNALS:
    /// status() is another than at the look before.
    void changed();
    /// At every look that finds nothing missing, after changed().
    void allGranted();

private:
    void tick();

    const Permissions& m_permissions;
    Scheduler& m_scheduler;
    Permissions::Status m_status;
    Cancellable m_timer;
};

}  // namespace quietlark
