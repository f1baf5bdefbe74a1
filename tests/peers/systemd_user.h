#pragma once

#include <memory>

#include <QByteArray>
#include <QDBusConnection>
#include <QString>
#include <QTemporaryDir>

#include "peers/child_process.h"

namespace quietlark {

/// A real systemd of a user and its session bus, apart from the rest of the computer. Only root can
/// start one.
class SystemdUser {
public:
    SystemdUser();
    ~SystemdUser();

    /// Why it does not run; empty when it does.
    [[nodiscard]] QByteArray whyNot() const { return m_whyNot; }

    /// A connection of its own to the session bus.
    [[nodiscard]] QDBusConnection connectToBus();

    /// Runs a shell command beside the manager, to its end; answers whether it succeeded.
    bool run(const QString& command);

    /// Installs a unit of this text and has the manager read it.
    bool installUnit(const QString& unit, const QString& text);

private:
    QTemporaryDir m_directory{QStringLiteral("/tmp/quietlark-systemd-XXXXXX")};
    std::unique_ptr<ChildProcess> m_process;
    QByteArray m_whyNot;
    QString m_connection;
};

}  // namespace quietlark
