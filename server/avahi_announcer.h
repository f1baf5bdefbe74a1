#pragma once

#include <mutex>
#include <optional>
#include <thread>

#include "platform/log.h"
#include "server/service_announcer.h"

namespace quietlark {

/// Announces by way of the Avahi daemon on the system bus, on a thread of its own. Takes another
/// name when somebody on the network has the same one, and announces again when the daemon or the
/// bus was restarted. Without a daemon it waits for one.
class AvahiAnnouncer final : public ServiceAnnouncer {
public:
    explicit AvahiAnnouncer(Log& log);
    /// Takes the announcement back, which may take a few seconds with a bus that hangs.
    ~AvahiAnnouncer() override;

    void announce(const ServiceAnnouncement& announcement) override;
    void withdraw() override;

private:
    void run();
    [[nodiscard]] std::optional<ServiceAnnouncement> wanted();
    [[nodiscard]] bool isEnding();
    void wake() const;

    Log& m_log;
    const int m_wakeEvent;
    std::mutex m_mutex;
    std::optional<ServiceAnnouncement> m_wanted;
    bool m_isEnding = false;
    std::thread m_thread;
};

}  // namespace quietlark
