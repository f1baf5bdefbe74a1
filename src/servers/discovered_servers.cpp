#include "servers/discovered_servers.h"

#include <algorithm>
#include <utility>

#include <QPointer>

namespace quietlark {

namespace {

using Entries = std::vector<MDNSBrowser::Entry>;

/// `entries` without those that are this computer by their name or host, in their order.
Entries filterOutSelf(Entries entries, const std::optional<QString>& localShortHostname) {
    if (!localShortHostname) return entries;
    const QString me = localShortHostname->toLower();
    const QString meHost = me + QStringLiteral(".local");
    std::erase_if(entries, [&](const MDNSBrowser::Entry& entry) {
        return entry.name.toLower() == me || entry.host.toLower() == meHost;
    });
    return entries;
}

}  // namespace

DiscoveredServers::DiscoveredServers(ServiceBrowserBackend& backend, LocalHostName& localHostName,
                                     Scheduler& scheduler)
    : m_localHostName(localHostName), m_scheduler(scheduler), m_browser(backend) {
    m_browser.onChange = [this](const Entries& entries) {
        m_scheduler.post([self = QPointer<DiscoveredServers>(this), entries] {
            if (self) self->didBrowse(entries);
        });
    };
}

void DiscoveredServers::start() {
    if (++m_startCount == 1) m_browser.start();
}

void DiscoveredServers::stop() {
    const qint64 remaining = m_startCount - 1;
    m_startCount = std::max<qint64>(remaining, 0);
    if (remaining < 1) m_browser.stop();
}

void DiscoveredServers::didBrowse(Entries entries) {
    m_unfiltered.reset();
    if (m_ownName || entries.empty()) {
        publish(filterOutSelf(std::move(entries), m_ownName.value_or(std::nullopt)));
        return;
    }
    m_unfiltered = std::move(entries);
    lookUpOwnName();
}

void DiscoveredServers::lookUpOwnName() {
    if (std::exchange(m_isLookingUp, true)) return;
    m_lookUp = m_localHostName.lookUp([this](const std::optional<QString>& name) {
        m_ownName = name;
        if (auto entries = std::exchange(m_unfiltered, std::nullopt))
            publish(filterOutSelf(std::move(*entries), name));
    });
}

void DiscoveredServers::publish(Entries remotes) {
    Q_EMIT remotesWillChange();
    m_remotes = std::move(remotes);
    Q_EMIT remotesChanged();
}

}  // namespace quietlark
