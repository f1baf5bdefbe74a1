#include <csignal>

#include "program/desktop_program_fixture.h"

namespace quietlark {
namespace {

class QuitProgramTest : public DesktopProgramFixture, public testing::WithParamInterface<int> {
protected:
    void signal(int number) { ::kill(static_cast<pid_t>(m_program->processId()), number); }
};

TEST_P(QuitProgramTest, WhoeverAsksItToEndsItInGoodOrder) {
    ChildProcess& program = start();
    signal(GetParam());
    EXPECT_EQ(program.readAll(), "");
    // A program that the signal killed has none of its own.
    EXPECT_EQ(program.exitCode(), 0);
}

INSTANTIATE_TEST_SUITE_P(Signals, QuitProgramTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(QuitProgramTest, AProgramThatIsToOutliveItsTerminalDoes) {
    ChildProcess& program = start(QStringLiteral("trap '' HUP; "));
    signal(SIGHUP);
    signal(SIGTERM);
    EXPECT_EQ(program.readAll(), "");
    EXPECT_EQ(program.exitCode(), 0);
}

}  // namespace
}  // namespace quietlark
