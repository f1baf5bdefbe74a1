#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include <QObject>
#include <QString>

#include "platform/linux/avahi/avahi_object.h"
#include "platform/scheduler.h"
#include "platform/service_browser_backend.h"

namespace quietlark {

/// One browse, kept up while the Avahi daemon comes and goes. Avahi tells of a service once for
/// every interface and protocol; here it is found with the first and removed with the last.
class AvahiBrowse final : public QObject {
    Q_OBJECT

public:
    using Handlers = ServiceBrowserBackend::BrowseHandlers;

    /// More services than this are not found, whoever advertises them.
    static constexpr std::size_t maxServices = 1000;

    /// `newIdentity` numbers the services. A handler may destroy this object.
    AvahiBrowse(AvahiDaemon& daemon, Scheduler& scheduler, ServiceQuery query, Handlers handlers,
                std::function<quint64()> newIdentity);

    /// Follows the daemon's state; to be called once when the browse begins.
    void follow();

    /// Reports the service as removed and found anew, if it is one of this browse.
    void renew(quint64 identity);

private:
    /// A service and where it is seen.
    struct Seen {
        FoundService service;
        std::set<std::pair<int, int>> ways;  ///< interface and protocol
    };

    void begin();
    void fail();
    void receive(const QDBusMessage& signal);
    void appear(const QString& name, std::pair<int, int> way);
    void disappear(const QString& name, std::pair<int, int> way);
    void removeAll();
    void report(BrowseState::Kind kind, const QString& reason = {});

    AvahiDaemon& m_daemon;
    Scheduler& m_scheduler;
    const ServiceQuery m_query;
    const Handlers m_handlers;
    const std::function<quint64()> m_newIdentity;
    std::unique_ptr<AvahiObject> m_browser;
    std::map<QString, Seen> m_services;  ///< by name
};

}  // namespace quietlark
