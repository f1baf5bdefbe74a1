#include "commands/dictation_command.h"

#include <sstream>

#include <gtest/gtest.h>

#include "commands/console.h"

namespace quietlark {
namespace {

/// Answers at once with what the test has put there.
class FakeRunningApplication final : public RunningApplication {
public:
    Cancellable reopen(std::function<void(const tl::expected<void, Unavailable>&)>) override {
        return {};
    }
    Cancellable order(DictationOrder order, std::function<void(const Answer&)> onAnswer) override {
        lastOrder = order;
        onAnswer(answer);
        return {};
    }

    Answer answer = DictationReport{QStringLiteral("idle"), {}};
    std::optional<DictationOrder> lastOrder;
};

class DictationCommandTest : public testing::Test {
protected:
    void run(DictationOrder order) {
        m_command.run({order}, [this](ExitCode code) { m_exitCodes.push_back(code); });
    }

    FakeRunningApplication m_application;
    std::ostringstream m_results;
    std::ostringstream m_messages;
    Console m_console{m_results, m_messages};
    DictationCommand m_command{m_application, m_console};
    std::vector<ExitCode> m_exitCodes;
};

TEST_F(DictationCommandTest, TheOrderIsPassedOnAndTheStatePrinted) {
    m_application.answer = DictationReport{QStringLiteral("recording"), {}};
    run(DictationOrder::start);
    EXPECT_EQ(m_application.lastOrder, DictationOrder::start);
    EXPECT_EQ(m_results.str(), "recording\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
}

TEST_F(DictationCommandTest, AnErrorOfDictationIsAFailureWithItsSentence) {
    m_application.answer =
        DictationReport{QStringLiteral("unreachable"), QStringLiteral("No server configured")};
    run(DictationOrder::status);
    EXPECT_EQ(m_results.str(), "unreachable\n");
    EXPECT_EQ(m_messages.str(), "quietlark: No server configured\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
}

TEST_F(DictationCommandTest, WithoutARunningProgramTheReasonIsGiven) {
    m_application.answer = tl::unexpected(Unavailable{QStringLiteral("Not running.")});
    run(DictationOrder::toggle);
    EXPECT_EQ(m_results.str(), "");
    EXPECT_EQ(m_messages.str(), "quietlark: Not running.\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
}

}  // namespace
}  // namespace quietlark
