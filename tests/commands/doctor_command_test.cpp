#include "commands/doctor_command.h"

#include <sstream>

#include <gtest/gtest.h>

#include "commands/console.h"
#include "fakes/fake_scheduler.h"

namespace quietlark {
namespace {

class DoctorCommandTest : public testing::Test {
protected:
    DoctorCheck microphone() {
        return {QStringLiteral("Microphone"), [this] { return m_microphoneProblem; }};
    }
    static DoctorCheck keyboard() {
        return {QStringLiteral("Keyboard"), [] { return std::optional<QString>(); }};
    }
    void run() {
        m_command.run([this](ExitCode code) { m_exitCodes.push_back(code); });
    }

    FakeScheduler m_scheduler;
    std::optional<QString> m_microphoneProblem;
    std::ostringstream m_results;
    std::ostringstream m_messages;
    Console m_console{m_results, m_messages};
    DoctorCommand m_command{{microphone(), keyboard()}, m_scheduler, m_console};
    std::vector<ExitCode> m_exitCodes;
};

TEST_F(DoctorCommandTest, WhatIsWellIsSaidAtOnce) {
    run();
    m_scheduler.advance(DoctorCommand::lookInterval);
    EXPECT_EQ(m_results.str(), "ok\tMicrophone\nok\tKeyboard\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
}

TEST_F(DoctorCommandTest, WhatIsWellInOneWayOrAnotherSaysInWhich) {
    DoctorCommand command({{QStringLiteral("Log"), [] { return std::optional<QString>(); },
                            [] { return QStringLiteral("the journal"); }}},
                          m_scheduler, m_console);
    command.run([](ExitCode) {});
    m_scheduler.advance(DoctorCommand::lookInterval);
    EXPECT_EQ(m_results.str(), "ok\tLog: the journal\n");
}

TEST_F(DoctorCommandTest, WhatTakesAMomentIsWaitedFor) {
    m_microphoneProblem = QStringLiteral("Not yet.");
    run();
    m_scheduler.advance(DoctorCommand::patience / 2);
    EXPECT_TRUE(m_exitCodes.empty());
    m_microphoneProblem.reset();
    m_scheduler.advance(DoctorCommand::lookInterval);
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
}

TEST_F(DoctorCommandTest, WhatStaysMissingIsAFailureWithItsSentence) {
    m_microphoneProblem = QStringLiteral("Connect one.");
    run();
    m_scheduler.advance(DoctorCommand::patience * 2);
    EXPECT_EQ(m_results.str(), "missing\tMicrophone: Connect one.\nok\tKeyboard\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
}

}  // namespace
}  // namespace quietlark
