#pragma once

#include <memory>
#include <optional>

#include <QDBusConnection>
#include <QObject>

#include "platform/scheduler.h"

namespace quietlark {

/// A connection of its own to the system's message bus, made anew after it was lost. Connecting
/// waits for the bus and is done by another thread; everything here is for the main thread.
class SystemBus final : public QObject {
    Q_OBJECT

public:
    /// Connects only once open() is called. `address` is one as in DBUS_SYSTEM_BUS_ADDRESS; empty
    /// for the system's own.
    explicit SystemBus(Scheduler& scheduler, QString address = {});
    ~SystemBus() override;

    /// Connects, and from then on tries again every other second while there is no connection.
    void open();

    /// Nothing while there is no connection.
    [[nodiscard]] const std::optional<QDBusConnection>& connection() const { return m_connection; }

Q_SIGNALS:
    void opened();
    /// The connection was lost, or an attempt to make one has failed.
    void closed();

private Q_SLOTS:
    void lose();

private:
    struct Attempt;

    void connectOnThread();
    void conclude(const QString& name);
    void retryLater();

    Scheduler& m_scheduler;
    const QString m_address;
    std::shared_ptr<Attempt> m_attempt;
    std::optional<QDBusConnection> m_connection;
    bool m_isOpen = false;
};

}  // namespace quietlark
