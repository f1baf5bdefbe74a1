#include "peers/session_bus.h"

namespace quietlark {

SessionBus::SessionBus()
    : m_daemon(std::make_unique<ChildProcess>(
          QStringLiteral("dbus-daemon"),
          QStringList{QStringLiteral("--session"), QStringLiteral("--nofork"),
                      QStringLiteral("--print-address")})),
      m_address(QString::fromUtf8(m_daemon->readLine()).trimmed()) {}

SessionBus::~SessionBus() {
    for (const QString& name : m_connections)
        QDBusConnection::disconnectFromBus(name);
}

QDBusConnection SessionBus::connect() {
    const QString name = QStringLiteral("%1 %2").arg(m_address).arg(m_connections.size());
    m_connections << name;
    return QDBusConnection::connectToBus(m_address, name);
}

}  // namespace quietlark
