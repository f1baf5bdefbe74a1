#pragma once

#include <memory>

#include <QDBusConnection>

#include "peers/child_process.h"

namespace quietlark {

/// A real D-Bus session bus of its own.
class SessionBus {
public:
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// For DBUS_SESSION_BUS_ADDRESS; null when there is no bus.
    [[nodiscard]] QString address() const { return m_address; }

    /// One more participant, with a connection of its own.
    [[nodiscard]] QDBusConnection connect();

    void end() { m_daemon->end(); }

private:
    std::unique_ptr<ChildProcess> m_daemon;
    QString m_address;
    QStringList m_connections;
};

}  // namespace quietlark
