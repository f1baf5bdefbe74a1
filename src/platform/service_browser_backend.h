#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include <QByteArray>
#include <QMap>
#include <QString>
#include <tl/expected.hpp>

#include "platform/cancellable.h"

namespace quietlark {

/// A kind of DNS-SD service, and where to look for it.
struct ServiceQuery {
    QString type;    ///< such as "_whisper._tcp."; the final dot may be left out
    QString domain;  ///< such as "local."; empty for wherever the system looks by itself
};

/// A service instance that a browse has found.
struct FoundService {
    quint64 identity = 0;  ///< never given twice by one backend
    QString name;          ///< the instance name, any text of at most 63 bytes of UTF-8
    ServiceQuery query;    ///< what it was found by

    bool operator==(const FoundService& other) const { return identity == other.identity; }
};

/// What a service says about itself. All of it comes from the network, and is bounded in length but
/// otherwise whatever somebody sent.
struct ResolvedService {
    /// TXT keys as they were sent, and their bytes; empty for a key without a value.
    using TxtRecord = QMap<QByteArray, QByteArray>;

    std::optional<QString> hostName;     ///< may end in a dot
    int port = 0;                        ///< 0 to 65535; 0 means there is none
    std::optional<TxtRecord> txtRecord;  ///< absent when it sent none

    bool operator==(const ResolvedService&) const = default;
};

/// How a browse as a whole is doing.
struct BrowseState {
    enum class Kind {
        Setup,      ///< it is being set up
        Ready,      ///< it is running
        Waiting,    ///< it cannot run at the moment, and becomes ready by itself when it can
        Failed,     ///< it was refused; it may be tried again
        Cancelled,  ///< it has ended for good
    };

    Kind kind = Kind::Setup;
    QString reason;  ///< in Waiting and Failed, one sentence for the user that says what to do
};

/// Finds services on the local network by DNS-SD. A service is one service however many interfaces
/// and protocols it is seen through. Main thread; no call waits for another program.
class ServiceBrowserBackend {
public:
    /// What a browse reports; any of them may be empty, and may destroy the browse's handle.
    struct BrowseHandlers {
        std::function<void(const BrowseState&)> stateChanged;
        std::function<void(const FoundService&)> found;
        /// Also for every service found so far when the system's own browser ends, and, followed by
        /// found() with a new identity, when a service that is being resolved has moved to another
        /// host or port.
        std::function<void(const FoundService&)> removed;
    };

    enum class ResolveFailure { TimedOut, Refused };
    using ResolveHandler =
        std::function<void(const tl::expected<ResolvedService, ResolveFailure>&)>;

    virtual ~ServiceBrowserBackend() = default;

    /// Reports until the handle is destroyed, on the main thread, never before the call returns.
    [[nodiscard]] virtual Cancellable browse(ServiceQuery query, BrowseHandlers handlers) = 0;

    /// Answers with what the service says, and again whenever its TXT record has changed, until the
    /// handle is destroyed; the handler may do that. Or fails once, if there was no answer within
    /// `timeout`. Never before the call returns.
    [[nodiscard]] virtual Cancellable resolve(const FoundService& service,
                                              std::chrono::milliseconds timeout,
                                              ResolveHandler onAnswer) = 0;
};

}  // namespace quietlark
