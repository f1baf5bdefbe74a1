#include "platform/linux/session_bus/pending_answer.h"

#include <utility>

#include <QDBusPendingCallWatcher>
#include <QPointer>

namespace quietlark {

namespace {

// Nobody who is asked here has anything to wait for; who takes longer hangs.
constexpr int answerTimeoutMilliseconds = 5000;

}  // namespace

Cancellable ask(const QDBusConnection& bus, const QDBusMessage& question,
                std::function<void(const QDBusMessage& reply)> onReply) {
    // Without a connection Qt would never finish the call.
    const auto call = bus.isConnected()
                          ? bus.asyncCall(question, answerTimeoutMilliseconds)
                          : QDBusPendingCall::fromError(QDBusError(QDBusError::Disconnected, {}));
    auto* watcher = new QDBusPendingCallWatcher(call);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [onReply = std::move(onReply)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         onReply(finished->reply());
                     });
    // Later, since the handler that is running may be what cancels.
    return Cancellable([watcher = QPointer(watcher)] {
        if (!watcher) return;
        watcher->disconnect();
        watcher->deleteLater();
    });
}

}  // namespace quietlark
