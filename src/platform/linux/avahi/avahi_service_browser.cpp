#include "platform/linux/avahi/avahi_service_browser.h"

#include <chrono>
#include <utility>

#include <QPointer>

namespace quietlark {

AvahiServiceBrowser::AvahiServiceBrowser(AvahiDaemon& daemon, Scheduler& scheduler)
    : m_daemon(daemon), m_scheduler(scheduler) {}

Cancellable AvahiServiceBrowser::browse(ServiceQuery query, BrowseHandlers handlers) {
    const auto handle = ++m_lastHandle;
    auto browse =
        std::make_unique<AvahiBrowse>(m_daemon, m_scheduler, std::move(query), std::move(handlers),
                                      [this] { return ++m_lastIdentity; });
    // Later, as nothing may be reported before this call returns.
    m_scheduler.after(std::chrono::milliseconds(0), browse.get(),
                      [begun = browse.get()] { begun->follow(); });
    m_browses[handle] = std::move(browse);
    return Cancellable([self = QPointer(this), handle] {
        if (self) self->m_browses.erase(handle);
    });
}

Cancellable AvahiServiceBrowser::resolve(const FoundService& service,
                                         std::chrono::milliseconds timeout,
                                         ResolveHandler onAnswer) {
    const auto handle = ++m_lastHandle;
    m_resolutions[handle] = std::make_unique<AvahiResolution>(
        m_daemon, m_scheduler, service, timeout,
        AvahiResolution::Handlers{
            .answered = std::move(onAnswer),
            .moved = [this, identity = service.identity] { renew(identity); }});
    return Cancellable([self = QPointer(this), handle] {
        if (self) self->m_resolutions.erase(handle);
    });
}

void AvahiServiceBrowser::renew(quint64 identity) {
    // An identity belongs to one browse; the others' handlers may end any of them.
    std::vector<QPointer<AvahiBrowse>> browses;
    for (const auto& [handle, browse] : m_browses)
        browses.emplace_back(browse.get());
    for (const auto& browse : browses) {
        if (browse) browse->renew(identity);
    }
}

}  // namespace quietlark
