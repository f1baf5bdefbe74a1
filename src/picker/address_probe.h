#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <QString>

#include "platform/cancellable.h"
#include "transcription/resolved_server.h"

namespace quietlark {

class Scheduler;
class ServerResolver;

/// How the check of a typed address stands.
struct ProbeState {
    enum class Case {
        ok,       ///< a transcription server answers there
        idle,     ///< there is nothing to check
        probing,  ///< a check is running
        failed,   ///< the last check found none; another follows
    };

    Case kind = Case::idle;
    std::optional<QString> model = {};  ///< what the server says it uses; of `ok` only

    bool operator==(const ProbeState&) const = default;
};

/// Checks an address in the background until a server answers there, starting once the user has
/// paused typing. Main thread.
class AddressProbe {
public:
    static constexpr std::chrono::milliseconds typingPause{500};
    static constexpr std::chrono::milliseconds retryDelay{3000};

    /// Who follows state() and isUpToDate().
    struct Observer {
        std::function<void()> willChange;  ///< called just before a change
        std::function<void()> changed;     ///< and just after it
    };

    AddressProbe(ServerResolver& resolver, Scheduler& scheduler, Observer observer);

    [[nodiscard]] const ProbeState& state() const { return m_state; }

    /// Whether state() is about the address that is to be checked, and not about one before it.
    [[nodiscard]] bool isUpToDate() const { return m_askedAddress == m_address; }

    /// Checks this address, and no other any more. The state stays until the check begins. That the
    /// state may not be up to date any more goes without an announcement: it is the caller's news.
    void check(const QString& baseAddress);

    /// There is nothing to check.
    void reset();

    /// Stops checking; the state stays.
    void cancel();

private:
    void waitFor(std::chrono::milliseconds delay);
    void ask();
    void onAnswer(const std::optional<ResolvedServer>& server);
    void publish(ProbeState state, const QString& askedAddress);

    ServerResolver& m_resolver;
    Scheduler& m_scheduler;
    const Observer m_observer;
    ProbeState m_state;
    QString m_address;
    QString m_askedAddress;
    std::unique_ptr<QObject> m_wait;  ///< its end calls off the question that would follow
    Cancellable m_question;
};

}  // namespace quietlark
