#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "platform/journal/journal_daemon.h"
#include "platform/linux/journal/journal_log.h"

namespace quietlark {
namespace {

/// A log and a way to read back what was written to it.
class ReadableLog {
public:
    virtual ~ReadableLog() = default;
    virtual bool isAvailable() = 0;
    virtual Log& log() = 0;
    virtual std::vector<FakeLog::Line> lines() = 0;
};

class ReadableFakeLog final : public ReadableLog {
public:
    bool isAvailable() override { return true; }
    Log& log() override { return m_log; }
    std::vector<FakeLog::Line> lines() override { return m_log.lines(); }

private:
    FakeLog m_log;
};

class ReadableJournalLog final : public ReadableLog {
public:
    bool isAvailable() override { return m_hasPrivateRun; }
    Log& log() override { return m_log; }
    std::vector<FakeLog::Line> lines() override {
        std::vector<FakeLog::Line> lines;
        for (const QJsonObject& entry : m_daemon.entries(QStringLiteral("net.quietlark.contract")))
            lines.push_back({entry[QLatin1String("PRIORITY")] == QStringLiteral("3")
                                 ? LogLevel::Error
                                 : LogLevel::Info,
                             entry[QLatin1String("MESSAGE")].toString().toStdString()});
        return lines;
    }

private:
    const bool m_hasPrivateRun = usePrivateRun();
    JournalDaemon m_daemon;
    JournalLog m_log{"net.quietlark.contract", "dictation"};
};

template <typename Readable>
class LogContract : public testing::Test {
protected:
    void SetUp() override {
        if (!m_readable.isAvailable()) GTEST_SKIP() << "a journal of one's own takes root";
    }

    Log& log() { return m_readable.log(); }
    std::vector<FakeLog::Line> lines() { return m_readable.lines(); }

private:
    Readable m_readable;
};

using Logs = testing::Types<ReadableFakeLog, ReadableJournalLog>;
TYPED_TEST_SUITE(LogContract, Logs);

TYPED_TEST(LogContract, LinesKeepTheirLevelAndOrder) {
    this->log().write(LogLevel::Info, "first");
    this->log().write(LogLevel::Error, "second");
    this->log().write(LogLevel::Info, "third");
    const std::vector<FakeLog::Line> expected{
        {LogLevel::Info, "first"}, {LogLevel::Error, "second"}, {LogLevel::Info, "third"}};
    EXPECT_EQ(this->lines(), expected);
}

TYPED_TEST(LogContract, ALineIsKeptInFull) {
    const std::string line = "naïve 日本 = \\ \" " + std::string(100'000, 'x');
    this->log().write(LogLevel::Info, line);
    EXPECT_EQ(this->lines(), (std::vector<FakeLog::Line>{{LogLevel::Info, line}}));
}

TYPED_TEST(LogContract, AnyThreadMayWrite) {
    // Fewer lines than the journal's queue holds, so that a slow machine loses none.
    std::vector<std::thread> writers;
    for (int i = 0; i < 4; ++i) {
        writers.emplace_back([this] {
            for (int j = 0; j < 2; ++j)
                this->log().write(LogLevel::Info, "line");
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    EXPECT_EQ(this->lines().size(), 8U);
}

}  // namespace
}  // namespace quietlark
