#include <algorithm>

#include "commands/recording.h"
#include "config/config.h"
#include "program/program_fixture.h"

namespace quietlark {
namespace {

class TranscribeProgramTest : public ProgramFixture {
protected:
    void SetUp() override { m_server.on("/v1/models", http_reply::json("{}")); }

    void uploadMeets(HttpServer::Reply reply) {
        m_server.on("/v1/audio/transcriptions", std::move(reply));
    }
    Outcome transcribe(const QString& file) {
        return run(
            {QStringLiteral("transcribe"), file, QStringLiteral("--server"), m_server.url()});
    }
    Outcome transcribeRecording() { return transcribe(write("a.wav", recording())); }
    [[nodiscard]] int uploads() const {
        const auto lines = m_server.requestLines();
        return static_cast<int>(
            std::count(lines.begin(), lines.end(), "POST /v1/audio/transcriptions"));
    }
    void expectRefusedWithoutAQuestion(const QString& file, const char* words) {
        expectFailure(transcribe(file), words);
        EXPECT_EQ(m_server.connectionCount(), 0);
    }
};

TEST_F(TranscribeProgramTest, TextIsPrinted) {
    uploadMeets(http_reply::json(R"({"text": " Hello   world\n"})"));
    const Outcome outcome = transcribeRecording();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.results, "Hello world\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_TRUE(m_server.requests().back().body.contains("RIFF"));
}

TEST_F(TranscribeProgramTest, RecordingMayComeFromStandardInput) {
    uploadMeets(http_reply::answer(200, "hello"));
    const Outcome outcome = run({QStringLiteral("transcribe"), QStringLiteral("-"),
                                 QStringLiteral("--server"), m_server.url()},
                                recording());
    EXPECT_EQ(outcome.results, "hello\n");
}

TEST_F(TranscribeProgramTest, ConfiguredServerIsAsked) {
    Config config;
    config.serverMode = ManualRemote{QStringLiteral("127.0.0.1"), m_server.port(), QString()};
    config.language = QStringLiteral("de");
    ASSERT_TRUE(config.save(path("config/Quietlark/config.json")));
    uploadMeets(http_reply::answer(200, "hallo"));
    EXPECT_EQ(run({QStringLiteral("transcribe"), write("a.wav", recording())}).results, "hallo\n");
    EXPECT_TRUE(m_server.requests().back().body.contains("\r\n\r\nde\r\n"));
}

TEST_F(TranscribeProgramTest, LocalServerIsAskedAtItsEndpoint) {
    Config config;
    config.serverMode = Local{};
    ASSERT_TRUE(config.save(path("config/Quietlark/config.json")));
    const QString endpoint =
        write("endpoint", "local=127.0.0.1:" + QByteArray::number(m_server.port()) + "\n");
    ASSERT_TRUE(QFile::setPermissions(endpoint, QFile::ReadOwner | QFile::WriteOwner));
    uploadMeets(http_reply::answer(200, "hello"));
    EXPECT_EQ(run({QStringLiteral("transcribe"), write("a.wav", recording())}).results, "hello\n");
}

TEST_F(TranscribeProgramTest, WithoutAServerItSaysHowToNameOne) {
    expectFailure(run({QStringLiteral("transcribe"), write("a.wav", recording())}), "--server");
}

TEST_F(TranscribeProgramTest, MissingFileIsRefused) {
    expectRefusedWithoutAQuestion(path("none.wav"), "none.wav");
}

TEST_F(TranscribeProgramTest, DirectoryIsRefused) {
    expectRefusedWithoutAQuestion(path(""), "directory");
}

TEST_F(TranscribeProgramTest, EmptyFileIsRefused) {
    expectRefusedWithoutAQuestion(write("a.wav", ""), "not a WAV file");
}

TEST_F(TranscribeProgramTest, MalformedFileIsRefused) {
    expectRefusedWithoutAQuestion(write("a.wav", recording().first(100)), "cut short");
    expectRefusedWithoutAQuestion(write("b.wav", QByteArray(5000, '\xff')), "not a WAV file");
}

TEST_F(TranscribeProgramTest, ServerThatFailsIsASentence) {
    uploadMeets(http_reply::answer(500, "boom"));
    expectFailure(transcribeRecording(), "HTTP 500");
    EXPECT_EQ(uploads(), 1);
}

TEST_F(TranscribeProgramTest, ServerThatSaysNothingAndClosesIsASentence) {
    uploadMeets(http_reply::bytesAndClose());
    expectFailure(transcribeRecording(), "closed the connection");
}

TEST_F(TranscribeProgramTest, ServerThatSpeaksGarbageIsASentence) {
    uploadMeets(http_reply::bytesAndClose("\x16\x03\x01 what?\r\n\r\n"));
    expectFailure(transcribeRecording(), "closed the connection");
}

TEST_F(TranscribeProgramTest, EndlessAnswerIsASentence) {
    uploadMeets(http_reply::endless());
    expectFailure(transcribeRecording(), "too long");
}

TEST_F(TranscribeProgramTest, AnswerThatIsCutIsASentence) {
    uploadMeets(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{\"te"));
    expectFailure(transcribeRecording(), "closed the connection");
    EXPECT_EQ(uploads(), 1);
}

TEST_F(TranscribeProgramTest, UploadDoesNotGoToAnotherHost) {
    HttpServer other;
    uploadMeets(http_reply::answer(307, "", "Location: " + other.url().toUtf8() + "/\r\n"));
    expectFailure(transcribeRecording(), "HTTP 307");
    EXPECT_EQ(other.connectionCount(), 0);
}

TEST_F(TranscribeProgramTest, FullDiskIsASentence) {
    uploadMeets(http_reply::answer(200, "hello"));
    const QString command = QStringLiteral("\"$0\" transcribe \"$1\" --server \"$2\" >/dev/full");
    QProcess shell;
    shell.start(QStringLiteral("sh"),
                {QStringLiteral("-c"), command, QStringLiteral(QUIETLARK_PROGRAM),
                 write("a.wav", recording()), m_server.url()});
    ASSERT_TRUE(waitUntil([&shell] { return shell.state() == QProcess::NotRunning; }));
    EXPECT_EQ(shell.exitCode(), 1);
    EXPECT_EQ(shell.readAllStandardError(), "quietlark: The text could not be written.\n");
}

}  // namespace
}  // namespace quietlark
