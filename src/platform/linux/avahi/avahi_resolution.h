#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include <QObject>

#include "platform/linux/avahi/avahi_object.h"
#include "platform/scheduler.h"
#include "platform/service_browser_backend.h"

namespace quietlark {

/// One service's answers for as long as this object lives.
class AvahiResolution final : public QObject {
    Q_OBJECT

public:
    struct Handlers {
        ServiceBrowserBackend::ResolveHandler answered;
        std::function<void()> moved;  ///< the service is at another host or port; nothing follows
    };

    /// A handler may destroy this object.
    AvahiResolution(AvahiDaemon& daemon, Scheduler& scheduler, FoundService service,
                    std::chrono::milliseconds timeout, Handlers handlers);

private:
    void follow();
    void begin();
    void receive(const QDBusMessage& signal);
    void take(const ResolvedService& answer);
    void fail(ServiceBrowserBackend::ResolveFailure failure);
    void end();

    AvahiDaemon& m_daemon;
    const FoundService m_service;
    const Handlers m_handlers;
    std::unique_ptr<AvahiObject> m_resolver;
    std::optional<ResolvedService> m_answer;
    bool m_hasEnded = false;
};

}  // namespace quietlark
