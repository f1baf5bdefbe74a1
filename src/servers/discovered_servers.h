#pragma once

#include <optional>
#include <vector>

#include <QObject>

#include "platform/cancellable.h"
#include "platform/local_host_name.h"
#include "platform/scheduler.h"
#include "servers/mdns_browser.h"

namespace quietlark {

/// The transcription servers on the local network, this computer's own left out. Browses only while
/// somebody wants it. Main thread.
class DiscoveredServers final : public QObject {
    Q_OBJECT

public:
    DiscoveredServers(ServiceBrowserBackend& backend, LocalHostName& localHostName,
                      Scheduler& scheduler);

    /// In the browser's order. Keeps its last value when browsing stops.
    [[nodiscard]] const std::vector<MDNSBrowser::Entry>& remotes() const { return m_remotes; }

    /// Every screen that shows servers calls start() when it appears and stop() when it disappears;
    /// browsing runs from the first start() to the last stop(). A stop() too many does no harm.
    void start();
    void stop();

Q_SIGNALS:
    /// Just before remotes() is set, whether or not that changes it.
    void remotesWillChange();
    /// remotes() has been set: one turn of the main queue after the browser's news, or once this
    /// computer's name is known.
    void remotesChanged();

private:
    void didBrowse(std::vector<MDNSBrowser::Entry> entries);
    void lookUpOwnName();
    void publish(std::vector<MDNSBrowser::Entry> remotes);

    LocalHostName& m_localHostName;
    Scheduler& m_scheduler;
    std::vector<MDNSBrowser::Entry> m_remotes;
    std::optional<std::vector<MDNSBrowser::Entry>> m_unfiltered;  ///< waits for the own name
    std::optional<std::optional<QString>> m_ownName;  ///< what was looked up, if that is done
    bool m_isLookingUp = false;
    Cancellable m_lookUp;
    qint64 m_startCount = 0;
    MDNSBrowser m_browser;
};

}  // namespace quietlark
