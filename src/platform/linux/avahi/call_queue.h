#pragma once

#include <deque>
#include <functional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>

namespace quietlark {

/// Calls to other programs over D-Bus, a few at a time: a system bus refuses a program that waits
/// for more than 128 replies. Main thread; no call waits.
class CallQueue final : public QObject {
    Q_OBJECT

public:
    using ReplyHandler = std::function<void(const QDBusMessage& reply)>;

    /// Sends `message` when its turn comes, in the order of the calls. `onReply` may be empty; it
    /// runs once, with the reply or an error, never before this returns, unless `context` is gone
    /// by then.
    void add(const QDBusConnection& connection, const QDBusMessage& message, QObject* context,
             ReplyHandler onReply);

    /// Forgets every call, sent or not; no reply to them is passed on.
    void clear();

private:
    struct Call {
        QDBusConnection connection;
        QDBusMessage message;
        QPointer<QObject> context;
        ReplyHandler onReply;
    };

    void sendWaiting();
    void send(const Call& call);

    std::deque<Call> m_waiting;
    int m_underWay = 0;
    int m_generation = 0;  ///< replies to calls of an earlier one are nobody's
};

}  // namespace quietlark
