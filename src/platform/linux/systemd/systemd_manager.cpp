#include "platform/linux/systemd/systemd_manager.h"

#include <array>
#include <utility>

#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>

namespace quietlark {
namespace {

const QString service = QStringLiteral("org.freedesktop.systemd1");
const QString path = QStringLiteral("/org/freedesktop/systemd1");
const QString interface = QStringLiteral("org.freedesktop.systemd1.Manager");

struct News {
    const char* signal;
    const char* slot;
};
const std::array news{
    News{"UnitFilesChanged", SLOT(onUnitFilesChanged())},
    News{"Reloading", SLOT(onReloading(bool))},
    News{"JobRemoved", SLOT(onJobRemoved(QDBusMessage))},
};

}  // namespace

SystemdManager::SystemdManager(QDBusConnection bus, std::chrono::milliseconds patience)
    : m_bus(std::move(bus)),
      m_patience(patience),
      m_watcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { setOwner(owner); });
    askForOwner();
}

void SystemdManager::call(const QString& method, const QVariantList& arguments, QObject* context,
                          Handler onReply) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    // A session without it is to say so at once.
    message.setAutoStartService(false);
    if (!m_bus.isConnected()) {
        const auto error = message.createErrorReply(QDBusError::Disconnected, QString());
        QMetaObject::invokeMethod(
            context, [onReply = std::move(onReply), error] { onReply(error); },
            Qt::QueuedConnection);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(message, static_cast<int>(m_patience.count())), context);
    connect(watcher, &QDBusPendingCallWatcher::finished, context,
            [watcher, onReply = std::move(onReply)] {
                watcher->deleteLater();
                onReply(watcher->reply());
            });
}

// Not by QDBusConnection::connect() with the manager's name: that would wait for the bus.
void SystemdManager::askForOwner() {
    auto message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    message.setArguments({service});
    if (!m_bus.isConnected()) {
        QMetaObject::invokeMethod(this, &SystemdManager::gone, Qt::QueuedConnection);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(message, static_cast<int>(m_patience.count())), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        // What the watcher of the name has said meanwhile is newer.
        if (!m_owner.isEmpty()) return;
        const bool isThere = reply.type() == QDBusMessage::ReplyMessage;
        setOwner(isThere ? reply.arguments().value(0).toString() : QString());
    });
}

void SystemdManager::setOwner(const QString& owner) {
    stopFollowing();
    m_owner = owner;
    if (owner.isEmpty()) return Q_EMIT gone();
    follow(owner);
    Q_EMIT appeared();
}

void SystemdManager::follow(const QString& owner) {
    for (const News& one : news)
        m_bus.connect(owner, path, interface, QLatin1String(one.signal), this, one.slot);
    // The manager tells its news only to those who ask for them.
    call(QStringLiteral("Subscribe"), {}, this, [](const QDBusMessage&) {});
}

void SystemdManager::stopFollowing() {
    if (m_owner.isEmpty()) return;
    for (const News& one : news)
        m_bus.disconnect(m_owner, path, interface, QLatin1String(one.signal), this, one.slot);
}

void SystemdManager::onUnitFilesChanged() {
    Q_EMIT unitFilesChanged();
}

void SystemdManager::onReloading(bool active) {
    if (!active) Q_EMIT unitFilesChanged();
}

void SystemdManager::onJobRemoved(const QDBusMessage& signal) {
    constexpr qsizetype job = 1;
    constexpr qsizetype result = 3;
    Q_EMIT jobRemoved(signal.arguments().value(job).value<QDBusObjectPath>().path(),
                      signal.arguments().value(result).toString());
}

}  // namespace quietlark
