#include "program/desktop_program_fixture.h"

namespace quietlark {
namespace {

class DisplayLostProgramTest : public DesktopProgramFixture {};

TEST_F(DisplayLostProgramTest, ItSaysSoAndFails) {
    ChildProcess& program = start();
    m_screen.end();
    EXPECT_EQ(program.readAll(),
              "quietlark: The connection to the X server was lost, so no hotkey can work any "
              "more.\n");
    EXPECT_EQ(program.exitCode(), 1);
}

}  // namespace
}  // namespace quietlark
