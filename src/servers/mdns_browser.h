#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include <QString>

#include "platform/cancellable.h"
#include "platform/service_browser_backend.h"

namespace quietlark {

/// Finds transcription servers on the local network and asks each for its address and for what it
/// says about itself. Neither filters nor sorts. Main thread.
class MDNSBrowser {
public:
    /// One server that has answered.
    struct Entry {
        QString name;                  ///< the service's instance name
        QString host;                  ///< without a final dot; `name` if the service has no host
        qint64 port = 0;               ///< at least 1
        std::optional<QString> model;  ///< TXT "model"
        std::optional<double> rtf;     ///< TXT "rtf": seconds of audio per second; finite
        std::optional<QString> cpu;    ///< TXT "cpu": the brand string of the server's processor

        /// NAME|HOST:PORT, which no two entries of a browser share.
        [[nodiscard]] QString id() const;

        bool operator==(const Entry&) const = default;
    };

    /// So many hosts and ports of one name are kept; then the oldest answer makes room, so that a
    /// server that keeps changing fills no list.
    static constexpr std::ptrdiff_t maxEntriesPerName = 10;

    explicit MDNSBrowser(ServiceBrowserBackend& backend);
    MDNSBrowser(const MDNSBrowser&) = delete;
    MDNSBrowser& operator=(const MDNSBrowser&) = delete;

    /// Forgets every server, reports the empty list, and searches afresh.
    void start();

    /// Stops searching. The last list stays, and nothing is reported.
    void stop();

    /// Gets the whole list, in the order of the last answers: from start() itself, after each
    /// answer, and after each service that has gone, even if that was none of the list.
    std::function<void(const std::vector<Entry>&)> onChange;

private:
    void didFind(const FoundService& service);
    void didRemove(const FoundService& service);
    void didResolve(const FoundService& service, const ResolvedService& answer);
    void reportEntries();

    ServiceBrowserBackend& m_backend;
    std::map<quint64, Cancellable> m_resolutions;  ///< by the services' identities
    std::vector<Entry> m_entries;
    Cancellable m_browse;
};

/// Equal entries have equal hashes; the zeros of `rtf` are one.
[[nodiscard]] size_t qHash(const MDNSBrowser::Entry& entry, size_t seed = 0) noexcept;

}  // namespace quietlark
