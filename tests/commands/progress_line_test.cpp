#include "commands/progress_line.h"

#include <sstream>

#include <gtest/gtest.h>

namespace quietlark {

using namespace std::chrono_literals;

namespace {

class ProgressLineTest : public testing::Test {
protected:
    static void report(ProgressLine& line, std::chrono::milliseconds time, qint64 written) {
        line.report(ProgressLine::TimePoint() + time, written, 1000);
    }

    std::ostringstream m_messages;
};

}  // namespace

TEST_F(ProgressLineTest, ATerminalHasABarThatChangesInPlace) {
    ProgressLine line(m_messages, 51);
    report(line, 0ms, 250);
    report(line, 100ms, 500);
    EXPECT_EQ(m_messages.str(),
              "\r[#####---------------]  25 %  250 bytes of 1.0 kB\x1b[K"
              "\r[##########----------]  50 %  500 bytes of 1.0 kB\x1b[K");
}

TEST_F(ProgressLineTest, ATerminalIsNotWrittenToMoreThanTenTimesASecond) {
    ProgressLine line(m_messages, 80);
    for (int time = 0; time < 1000; ++time)
        report(line, std::chrono::milliseconds(time), 100);
    const std::string text = m_messages.str();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\r'), 10);
}

TEST_F(ProgressLineTest, TheBarCanBeTakenAway) {
    ProgressLine line(m_messages, 80);
    line.clear();
    EXPECT_EQ(m_messages.str(), "");
    report(line, 0ms, 250);
    m_messages.str({});
    line.clear();
    EXPECT_EQ(m_messages.str(), "\r\x1b[K");
}

TEST_F(ProgressLineTest, ElsewhereALineComesEveryTenSeconds) {
    ProgressLine line(m_messages, std::nullopt);
    for (int second = 0; second < 20; ++second)
        report(line, std::chrono::seconds(second), 250);
    EXPECT_EQ(m_messages.str(),
              "25 %  250 bytes of 1.0 kB\n25 %  250 bytes of 1.0 kB  0 bytes/s\n");
    line.clear();
    EXPECT_FALSE(m_messages.str().find('\r') != std::string::npos);
}

TEST_F(ProgressLineTest, NothingIsShownBeforeTheFirstByte) {
    ProgressLine line(m_messages, 80);
    report(line, 0ms, 0);
    EXPECT_EQ(m_messages.str(), "");
}

}  // namespace quietlark
