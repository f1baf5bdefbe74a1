#pragma once

#include <functional>
#include <map>
#include <vector>

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>

#include "platform/linux/avahi/call_queue.h"
#include "platform/linux/avahi/system_bus.h"

namespace quietlark {

/// The Avahi daemon on the system bus: whether it runs, calls to it, and its signals. Follows the
/// daemon by itself as it comes and goes. Main thread; no call waits for it.
class AvahiDaemon final : public QObject {
    Q_OBJECT

public:
    enum class State {
        Unknown,  ///< not found out yet
        NoBus,    ///< there is no system bus
        Absent,   ///< it does not run
        Running,
    };

    /// Connects to the bus only when state() is first wanted.
    explicit AvahiDaemon(SystemBus& bus);

    [[nodiscard]] State state();

    /// While it does not run, one sentence for the user that says what to do.
    [[nodiscard]] QString reason() const;

    /// Calls a method of the daemon that runs now. `onReply` runs once with the reply or an error,
    /// never before the call returns, unless `context` or the daemon is gone by then. Without a
    /// daemon nothing happens.
    void call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& arguments, QObject* context, CallQueue::ReplyHandler onReply);

    /// As call(), for a method that makes an object of the daemon's and replies with its path. What
    /// the object signals before `onReply` runs is kept for it.
    void prepare(const QString& method, const QVariantList& arguments,
                 CallQueue::ReplyHandler onReply);

    using SignalHandler = std::function<void(const QDBusMessage& signal)>;
    /// Passes on the signals of one of the daemon's objects until forget(); those that were kept at
    /// once.
    void listen(const QString& path, SignalHandler onSignal);
    void forget(const QString& path);

Q_SIGNALS:
    /// Also when one daemon has followed on another, with Absent in between.
    void stateChanged();

private Q_SLOTS:
    void receive(const QDBusMessage& signal);
    void followOwner(const QString& name, const QString& oldOwner, const QString& newOwner);

private:
    void findOwner();
    void useOwner(const QString& owner);
    void dropCalls();
    void setState(State state);

    SystemBus& m_bus;
    CallQueue m_calls;
    State m_state = State::Unknown;
    QString m_owner;  ///< the unique name of the daemon that runs
    bool m_hasHeardOfOwner = false;
    std::map<QString, SignalHandler> m_listeners;  ///< by object path
    int m_preparations = 0;                        ///< under way
    std::vector<QDBusMessage> m_early;  ///< of objects that nobody listens to yet, meanwhile
};

}  // namespace quietlark
