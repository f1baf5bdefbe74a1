#include <csignal>

#include "program/desktop_program_fixture.h"

namespace quietlark {
namespace {

class DisplayLostProgramTest : public DesktopProgramFixture {};

TEST_F(DisplayLostProgramTest, ItSaysSoAndFails) {
    ChildProcess& program = start();
    // As it gets one when it writes to the X server at that moment.
    kill(static_cast<pid_t>(program.processId()), SIGPIPE);
    m_screen.end();
    // Qt says that it could not draw, too, when it was about to.
    const QByteArray output = program.readAll();
    EXPECT_TRUE(
        output.endsWith("quietlark: The connection to the X server was lost, so no hotkey can "
                        "work any more.\n"))
        << output.toStdString();
    EXPECT_EQ(program.exitCode(), 1);
}

}  // namespace
}  // namespace quietlark
