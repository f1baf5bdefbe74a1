#pragma once

#include "platform/linux/avahi/avahi_daemon.h"
#include "platform/local_host_name.h"
#include "platform/scheduler.h"

namespace quietlark {

/// The name under which Avahi announces this computer; the kernel's, up to its first dot, when
/// Avahi does not say within a second.
class AvahiLocalHostName final : public LocalHostName {
public:
    AvahiLocalHostName(AvahiDaemon& daemon, Scheduler& scheduler);

    [[nodiscard]] Cancellable lookUp(Handler onAnswer) override;

private:
    AvahiDaemon& m_daemon;
    Scheduler& m_scheduler;
};

}  // namespace quietlark
