#pragma once

#include <optional>

#include "peers/child_process.h"
#include "peers/x_server.h"
#include "program/program_fixture.h"

namespace quietlark {

/// The tray program on a screen of its own, with nothing else of a desktop.
class DesktopProgramFixture : public ProgramFixture {
protected:
    /// Starts the program and waits until it is ready; `before` are shell commands that come first.
    /// What it says on either stream is read from the process.
    ChildProcess& start(const QString& before = {}) {
        auto environment = m_screen.environment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        const QString nowhere = QStringLiteral("unix:path=") + path("none");
        environment.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:") + path("none"));
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), nowhere);
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), nowhere);
        const QString command = before + QStringLiteral("exec \"$0\" 2>&1");
        m_program.emplace(
            QStringLiteral("sh"),
            QStringList{QStringLiteral("-c"), command, QStringLiteral(QUIETLARK_PROGRAM)},
            environment);
        EXPECT_TRUE(waitUntil([this] { return m_program->readLine().startsWith("ready: "); }));
        return *m_program;
    }

    XServer m_screen;
    std::optional<ChildProcess> m_program;
};

}  // namespace quietlark
