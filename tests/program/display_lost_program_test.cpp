#include <csignal>

#include <QByteArrayList>

#include "program/desktop_program_fixture.h"

namespace quietlark {
namespace {

class DisplayLostProgramTest : public DesktopProgramFixture {};

TEST_F(DisplayLostProgramTest, ItSaysSoAndFails) {
    ChildProcess& program = start();
    // As it gets one when it writes to the X server at that moment.
    kill(static_cast<pid_t>(program.processId()), SIGPIPE);
    m_screen.end();
    QByteArrayList lines = program.readAll().split('\n');
    // Qt says that it could not draw, when it was about to.
    lines.removeIf([](const QByteArray& line) { return line.startsWith("qt.qpa.xcb: "); });
    EXPECT_EQ(lines.join('\n'),
              "quietlark: The connection to the X server was lost, so no hotkey can work any "
              "more.\n");
    EXPECT_EQ(program.exitCode(), 1);
}

}  // namespace
}  // namespace quietlark
