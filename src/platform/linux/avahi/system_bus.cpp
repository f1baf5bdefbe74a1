#include "platform/linux/avahi/system_bus.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

namespace quietlark {

namespace {

using namespace std::chrono_literals;

constexpr auto retryInterval = 2s;

/// Qt knows connections by name, all over the process.
QString newConnectionName() {
    static std::atomic<int> count = 0;
    return QStringLiteral("quietlark-system-bus-%1").arg(++count);
}

QDBusConnection connectTo(const QString& address, const QString& name) {
    if (address.isEmpty()) return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
    return QDBusConnection::connectToBus(address, name);
}

}  // namespace

/// What the connecting thread shares with the main thread.
struct SystemBus::Attempt {
    std::mutex mutex;
    SystemBus* bus;  ///< null once nobody waits any more; guarded by mutex
};

SystemBus::SystemBus(Scheduler& scheduler, QString address)
    : m_scheduler(scheduler), m_address(std::move(address)) {}

SystemBus::~SystemBus() {
    if (m_attempt) {
        const std::lock_guard lock(m_attempt->mutex);
        m_attempt->bus = nullptr;
    }
    if (m_connection) QDBusConnection::disconnectFromBus(m_connection->name());
}

void SystemBus::open() {
    if (std::exchange(m_isOpen, true)) return;
    connectOnThread();
}

void SystemBus::connectOnThread() {
    m_attempt = std::make_shared<Attempt>();
    m_attempt->bus = this;
    // Detached, since a bus that hangs must not keep anybody who ends this from doing so.
    std::thread([attempt = m_attempt, address = m_address, name = newConnectionName()] {
        const bool isConnected = connectTo(address, name).isConnected();
        const std::lock_guard lock(attempt->mutex);
        if (!attempt->bus || !isConnected) QDBusConnection::disconnectFromBus(name);
        if (!attempt->bus) return;
        attempt->bus->m_scheduler.post([attempt, name = isConnected ? name : QString()] {
            // The main thread alone takes it away.
            if (attempt->bus) attempt->bus->conclude(name);
        });
    }).detach();
}

void SystemBus::conclude(const QString& name) {
    m_attempt.reset();
    if (name.isEmpty()) {
        retryLater();
        Q_EMIT closed();
        return;
    }
    m_connection.emplace(name);
    m_connection->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                          QStringLiteral("org.freedesktop.DBus.Local"),
                          QStringLiteral("Disconnected"), this, SLOT(lose()));
    Q_EMIT opened();
}

void SystemBus::lose() {
    if (!m_connection) return;
    QDBusConnection::disconnectFromBus(m_connection->name());
    m_connection.reset();
    retryLater();
    Q_EMIT closed();
}

void SystemBus::retryLater() {
    m_scheduler.after(retryInterval, this, [this] { connectOnThread(); });
}

}  // namespace quietlark
