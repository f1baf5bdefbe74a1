#include "platform/linux/journal/journal_log.h"

#include <optional>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/journal/journal_daemon.h"

namespace quietlark {
namespace {

/// Standard error as a pipe whose other end this test holds.
class StandardErrorPipe {
public:
    StandardErrorPipe() : m_saved(dup(STDERR_FILENO)) {
        if (pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) == 0) dup2(m_pipe[1], STDERR_FILENO);
    }
    ~StandardErrorPipe() {
        dup2(m_saved, STDERR_FILENO);
        for (const int descriptor : {m_saved, m_pipe[0], m_pipe[1]})
            close(descriptor);
    }

    /// What has been written since the last call.
    std::string read() {
        std::string text(1 << 20, '\0');
        const auto size = ::read(m_pipe[0], text.data(), text.size());
        text.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        return text;
    }

private:
    int m_saved;
    int m_pipe[2];
};

const QString identifier = QStringLiteral("net.quietlark.app");

class JournalLogTest : public testing::Test {
protected:
    void SetUp() override {
        if (!usePrivateRun()) GTEST_SKIP() << "a journal of one's own takes root";
    }

    void startJournal() {
        m_daemon.emplace();
        ASSERT_TRUE(m_daemon->isListening());
    }

    QString field(const char* name) {
        const auto entries = m_daemon->entries(identifier);
        return entries.empty() ? QString() : entries.back()[QLatin1String(name)].toString();
    }

    std::optional<JournalDaemon> m_daemon;
    JournalLog m_log{"net.quietlark.app", "dictation"};
};

}  // namespace

TEST_F(JournalLogTest, SubsystemCategoryAndPriorityAreFields) {
    startJournal();
    m_log.write(LogLevel::Info, "transcribe ok: 0.42s chars=11");
    EXPECT_EQ(field("MESSAGE"), QStringLiteral("transcribe ok: 0.42s chars=11"));
    EXPECT_EQ(field("SYSLOG_IDENTIFIER"), QStringLiteral("net.quietlark.app"));
    EXPECT_EQ(field("QUIETLARK_CATEGORY"), QStringLiteral("dictation"));
    EXPECT_EQ(field("PRIORITY"), QStringLiteral("6"));
}

TEST_F(JournalLogTest, ErrorsHaveThePriorityOfErrors) {
    startJournal();
    m_log.write(LogLevel::Error, "transcribe failed after 0.10s: invalidResponse");
    EXPECT_EQ(field("PRIORITY"), QStringLiteral("3"));
}

TEST_F(JournalLogTest, ABodyOfEightMegabytesArrivesWhole) {
    startJournal();
    const QString body(8 << 20, QLatin1Char('b'));
    m_log.write(LogLevel::Error, body.toStdString());
    EXPECT_TRUE(field("MESSAGE") == body);
}

TEST_F(JournalLogTest, AMessageCannotForgeFieldsOrLines) {
    startJournal();
    m_log.write(LogLevel::Info, "boom\nPRIORITY=0\nSYSLOG_IDENTIFIER=sudo\n\nMESSAGE=forged");
    EXPECT_EQ(m_daemon->entries(identifier).size(), 1U);
    EXPECT_EQ(m_daemon->entries(QStringLiteral("sudo")).size(), 0U);
    EXPECT_EQ(field("PRIORITY"), QStringLiteral("6"));
    EXPECT_EQ(field("MESSAGE"),
              QStringLiteral("boom\\nPRIORITY=0\\nSYSLOG_IDENTIFIER=sudo\\n\\nMESSAGE=forged"));
}

TEST_F(JournalLogTest, NothingTellsWhereTheProgramWasBuilt) {
    startJournal();
    m_log.write(LogLevel::Info, "line");
    EXPECT_EQ(field("MESSAGE"), QStringLiteral("line"));
    EXPECT_EQ(field("CODE_FILE"), QString());
}

TEST_F(JournalLogTest, WithoutAJournalLinesGoToStandardError) {
    StandardErrorPipe standardError;
    m_log.write(LogLevel::Info, "first\nsecond");
    m_log.write(LogLevel::Error, "third");
    EXPECT_EQ(standardError.read(),
              "net.quietlark.app[dictation] first\\nsecond\n"
              "net.quietlark.app[dictation] error: third\n");
}

TEST_F(JournalLogTest, AJournalThatEndedIsReplacedByStandardError) {
    startJournal();
    m_log.write(LogLevel::Info, "to the journal");
    EXPECT_EQ(field("MESSAGE"), QStringLiteral("to the journal"));
    m_daemon.reset();
    StandardErrorPipe standardError;
    m_log.write(LogLevel::Info, "to standard error");
    EXPECT_EQ(standardError.read(), "net.quietlark.app[dictation] to standard error\n");
}

TEST_F(JournalLogTest, AJournalThatHangsHoldsNobodyUp) {
    startJournal();
    m_daemon->suspend();
    StandardErrorPipe standardError;
    std::string lines;
    for (int i = 0; i < 10'000 && lines.empty(); ++i) {
        m_log.write(LogLevel::Info, "line");
        lines = standardError.read();
    }
    m_daemon->resume();
    EXPECT_EQ(lines, "net.quietlark.app[dictation] line\n");
}

TEST_F(JournalLogTest, StandardErrorThatNobodyReadsHoldsNobodyUp) {
    StandardErrorPipe standardError;
    m_log.write(LogLevel::Error, std::string(1 << 20, 'y'));
    const std::string text = standardError.read();
    EXPECT_TRUE(text.starts_with("net.quietlark.app[dictation] error: yyy")) << text.size();
}

}  // namespace quietlark
