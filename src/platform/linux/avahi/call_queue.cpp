#include "platform/linux/avahi/call_queue.h"

#include <chrono>
#include <utility>

#include <QDBusPendingCallWatcher>

namespace quietlark {

namespace {

using namespace std::chrono_literals;

constexpr int maxUnderWay = 32;
constexpr std::chrono::milliseconds callTimeout = 10s;

}  // namespace

void CallQueue::add(const QDBusConnection& connection, const QDBusMessage& message,
                    QObject* context, ReplyHandler onReply) {
    m_waiting.push_back({connection, message, context, std::move(onReply)});
    sendWaiting();
}

void CallQueue::clear() {
    m_waiting.clear();
    m_underWay = 0;
    ++m_generation;
}

void CallQueue::sendWaiting() {
    while (m_underWay < maxUnderWay && !m_waiting.empty()) {
        const Call call = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (call.context) send(call);
    }
}

void CallQueue::send(const Call& call) {
    ++m_underWay;
    const auto timeout = static_cast<int>(callTimeout.count());
    auto* watcher = new QDBusPendingCallWatcher(call.connection.asyncCall(call.message, timeout));
    watcher->setParent(this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, context = call.context, onReply = call.onReply,
             generation = m_generation](auto* finished) {
                finished->deleteLater();
                if (generation != m_generation) return;
                --m_underWay;
                sendWaiting();
                if (context && onReply) onReply(finished->reply());
            });
}

}  // namespace quietlark
