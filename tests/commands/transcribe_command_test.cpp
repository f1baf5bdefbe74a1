#include "commands/transcribe_command.h"

#include <optional>
#include <sstream>

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "commands/console.h"
#include "commands/recording.h"
#include "commands/silent_log.h"
#include "config/config.h"
#include "fakes/fake_http_client.h"
#include "fakes/fake_scheduler.h"
#include "transcription/server_resolver.h"

namespace quietlark {
namespace {

class TranscribeCommandTest : public testing::Test {
protected:
    void SetUp() override {
        write(recording());
        m_http.respondTo(QStringLiteral("http://h:1/v1/models"), 200, "{}");
    }
    void write(const QByteArray& content) const {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    void serverAnswers(int status, const QByteArray& body) {
        m_http.respondTo(QStringLiteral("http://h:1/v1/audio/transcriptions"), status, body);
    }
    void run(std::optional<QString> server = QStringLiteral("http://h:1"),
             std::optional<QString> language = std::nullopt) {
        m_command.emplace(m_resolver, m_client, m_configured, m_config, m_console);
        m_command->run({m_path, server, language},
                       [this](ExitCode code) { m_exitCodes.push_back(code); });
        m_http.runAnswers();
    }
    void expectFailure(const char* words) {
        EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
        EXPECT_EQ(m_results.str(), "");
        const std::string message = m_messages.str();
        EXPECT_NE(message.find(words), std::string::npos) << message;
        EXPECT_EQ(message.find('\n'), message.size() - 1);
    }
    [[nodiscard]] QByteArray upload() const { return m_http.requests().back().body; }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("a.wav"));
    FakeHttpClient m_http;
    FakeScheduler m_scheduler;
    SilentLog m_log;
    ConfiguredServer m_configured = tl::unexpected(QStringLiteral("None is configured."));
    ServerResolver m_resolver{m_http};
    TranscriptionClient m_client{m_http, m_scheduler, m_log};
    Config m_config;
    std::ostringstream m_results;
    std::ostringstream m_messages;
    Console m_console{m_results, m_messages};
    std::optional<TranscribeCommand> m_command;
    std::vector<ExitCode> m_exitCodes;
};

TEST_F(TranscribeCommandTest, CleanTextIsPrinted) {
    serverAnswers(200, R"({"text": " Hello  world [BLANK_AUDIO]\n"})");
    run();
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
    EXPECT_EQ(m_results.str(), "Hello world\n");
    EXPECT_EQ(m_messages.str(), "");
}

TEST_F(TranscribeCommandTest, ConfiguredServerAndLanguageAreUsed) {
    m_configured = QStringLiteral("http://h:1");
    m_config.language = QStringLiteral("de");
    serverAnswers(200, "hallo");
    run(std::nullopt);
    EXPECT_EQ(m_results.str(), "hallo\n");
    EXPECT_TRUE(upload().contains("name=\"language\"\r\n\r\nde\r\n"));
}

TEST_F(TranscribeCommandTest, GivenLanguageGoesBeforeTheConfiguredOne) {
    m_config.language = QStringLiteral("de");
    serverAnswers(200, "hi");
    run(QStringLiteral("http://h:1"), QString());
    EXPECT_FALSE(upload().contains("language"));
}

TEST_F(TranscribeCommandTest, WithoutAServerNothingIsAsked) {
    run(std::nullopt);
    expectFailure("None is configured.");
    EXPECT_TRUE(m_http.requests().empty());
}

TEST_F(TranscribeCommandTest, MalformedRecordingIsRefusedBeforeAnythingIsAsked) {
    write("RIFF....WAVEfmt ");
    run();
    expectFailure("a.wav");
    EXPECT_TRUE(m_http.requests().empty());
}

TEST_F(TranscribeCommandTest, UnknownServerIsNamed) {
    run(QStringLiteral("http://elsewhere:2"));
    expectFailure("http://elsewhere:2");
}

TEST_F(TranscribeCommandTest, RefusalOfTheServerIsOneSentence) {
    serverAnswers(500, "boom\nboom");
    run();
    expectFailure("HTTP 500");
}

TEST_F(TranscribeCommandTest, TextThatCannotBeWrittenIsAFailure) {
    serverAnswers(200, "hello");
    m_results.setstate(std::ios::failbit);
    run();
    expectFailure("could not be written");
}

}  // namespace
}  // namespace quietlark
