#pragma once

#include <memory>

#include <QDBusConnection>
#include <QString>
#include <QTemporaryDir>

#include "peers/child_process.h"

namespace quietlark {

/// A real Avahi daemon and a system bus of its own, on a network that nobody else is on. The bus is
/// reached by its path from outside that network.
class AvahiPeer {
public:
    enum class Network {
        Loopback,  ///< one interface and IPv4
        Several,   ///< a second interface, and IPv6
    };

    /// Whether this process may make networks, for which it must be root.
    [[nodiscard]] static bool canRun();

    /// Starts everything and waits until it answers.
    explicit AvahiPeer(Network network = Network::Loopback);
    ~AvahiPeer();

    /// As in DBUS_SYSTEM_BUS_ADDRESS; the same for as long as the peer lives.
    [[nodiscard]] QString busAddress() const;

    /// The name under which the daemon announces its computer.
    [[nodiscard]] static QString hostName();

    void startDaemon();
    /// Ends the daemon in good order, or, with killDaemon(), as a crash would.
    void stopDaemon();
    void killDaemon();
    void freezeDaemon();
    void thawDaemon();

    void startBus();
    /// Ends the bus, and the daemon with it.
    void stopBus();
    void freezeBus();
    void thawBus();

private:
    void command(const QByteArray& line);
    void writeConfiguration(Network network) const;

    QTemporaryDir m_directory;
    std::unique_ptr<ChildProcess> m_namespace;
};

}  // namespace quietlark
