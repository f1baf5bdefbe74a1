#pragma once

#include <map>
#include <memory>

#include <QObject>

#include "platform/linux/avahi/avahi_browse.h"
#include "platform/linux/avahi/avahi_daemon.h"
#include "platform/linux/avahi/avahi_resolution.h"
#include "platform/scheduler.h"
#include "platform/service_browser_backend.h"

namespace quietlark {

/// DNS-SD by the Avahi daemon. Services are told apart by their instance names: two computers that
/// use one name on different networks are taken for one service.
class AvahiServiceBrowser final : public QObject, public ServiceBrowserBackend {
    Q_OBJECT

public:
    AvahiServiceBrowser(AvahiDaemon& daemon, Scheduler& scheduler);

    [[nodiscard]] Cancellable browse(ServiceQuery query, BrowseHandlers handlers) override;
    [[nodiscard]] Cancellable resolve(const FoundService& service,
                                      std::chrono::milliseconds timeout,
                                      ResolveHandler onAnswer) override;

private:
    void renew(quint64 identity);

    AvahiDaemon& m_daemon;
    Scheduler& m_scheduler;
    quint64 m_lastIdentity = 0;
    quint64 m_lastHandle = 0;
    std::map<quint64, std::unique_ptr<AvahiBrowse>> m_browses;
    std::map<quint64, std::unique_ptr<AvahiResolution>> m_resolutions;
};

}  // namespace quietlark
