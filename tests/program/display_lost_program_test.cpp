#include <gtest/gtest.h>

#include "peers/x_server.h"
#include "program/program_fixture.h"
#include "support/wait.h"

namespace quietlark {
namespace {

class DisplayLostProgramTest : public ProgramFixture {};

TEST_F(DisplayLostProgramTest, ItSaysSoAndFails) {
    XServer server;
    auto environment = server.environment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
    environment.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:") + path("none"));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                       QStringLiteral("unix:path=") + path("none"));
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                       QStringLiteral("unix:path=") + path("none"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    ChildProcess program(QStringLiteral("sh"),
                         {QStringLiteral("-c"), QStringLiteral("exec \"$0\" 2>&1"),
                          QStringLiteral(QUIETLARK_PROGRAM)},
                         environment);
    ASSERT_TRUE(waitUntil([&] { return program.readLine().startsWith("ready: "); }));

    server.end();
    EXPECT_EQ(program.readAll(),
              "quietlark: The connection to the X server was lost, so no hotkey can work any "
              "more.\n");
    EXPECT_EQ(program.exitCode(), 1);
}

}  // namespace
}  // namespace quietlark
