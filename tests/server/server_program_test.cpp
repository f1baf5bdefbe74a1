#include "server/server_program.h"

#include <csignal>
#include <memory>
#include <thread>

#include <QFile>
#include <QFileInfo>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "peers/child_process.h"
#include "server/speech.h"
#include "support/wait.h"

namespace quietlark {
namespace {

const QString serverProgram = QStringLiteral(QUIETLARK_SERVER_PROGRAM);

/// The real program and curl as its client.
class ServerProgramTest : public testing::Test {
protected:
    std::unique_ptr<ChildProcess> program(const QStringList& arguments) const {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QUIETLARK_ENDPOINT_FILE"), m_endpointPath);
        return std::make_unique<ChildProcess>(serverProgram, arguments, environment);
    }

    void startServer() {
        m_server = program({});
        const QByteArray line = m_server->readLine(std::chrono::seconds(60));
        ASSERT_TRUE(line.startsWith("listening on http://127.0.0.1:")) << line.toStdString();
        m_url = QString::fromLatin1(line.mid(13));
    }

    /// Sends a signal and waits for the end.
    void endServer(int signal) {
        kill(static_cast<pid_t>(m_server->processId()), signal);
        ASSERT_TRUE(waitUntil([this] { return !m_server->isRunning(); }));
    }

    int exitCodeOf(const QStringList& arguments) const {
        const auto ended = program(arguments);
        EXPECT_TRUE(waitUntil([&] { return !ended->isRunning(); }, std::chrono::seconds(60)));
        return ended->exitCode();
    }

    QString fileOf(const WavBytes& wav) {
        QFile file(m_folder.filePath(QStringLiteral("%1.wav").arg(++m_files)));
        if (file.open(QIODevice::WriteOnly))
            file.write(reinterpret_cast<const char*>(wav.data()), static_cast<qint64>(wav.size()));
        return file.fileName();
    }

    std::unique_ptr<ChildProcess> startCurl(const QString& path, const QString& file,
                                            const QStringList& fields) const {
        QStringList arguments{QStringLiteral("--silent"), QStringLiteral("--write-out"),
                              QStringLiteral(" %{http_code}"), QStringLiteral("--form"),
                              QStringLiteral("file=@") + file};
        for (const QString& field : fields)
            arguments << QStringLiteral("--form-string") << field;
        return std::make_unique<ChildProcess>(QStringLiteral("curl"), arguments << m_url + path);
    }

    /// The answer's body and status.
    static std::string answerTo(ChildProcess& curl) {
        return curl.readAll(std::chrono::seconds(100)).toStdString();
    }

    std::string upload(const QString& path, const QString& file, const QStringList& fields = {}) {
        return answerTo(*startCurl(path, file, fields));
    }

    bool hasEndpointFile() const { return QFileInfo::exists(m_endpointPath); }

    QTemporaryDir m_folder;
    const QString m_endpointPath = m_folder.filePath(QStringLiteral("endpoint"));
    std::unique_ptr<ChildProcess> m_server;
    QString m_url;
    int m_files = 0;
};

const QString sentence = QStringLiteral("hello how are you");

}  // namespace

TEST_F(ServerProgramTest, BothFlavoursTranscribeWhatCurlUploads) {
    startServer();
    const QString file = fileOf(WAV::encode(speech(sentence), 16000, 1));
    const std::string expected = "{\"text\":\"hello how are you\"} 200";
    EXPECT_EQ(upload(QStringLiteral("/inference"), file, {QStringLiteral("response_format=json")}),
              expected);
    EXPECT_EQ(upload(QStringLiteral("/v1/audio/transcriptions"), file,
                     {QStringLiteral("model=whisper-1"), QStringLiteral("language=en")}),
              expected);
    EXPECT_EQ(upload(QStringLiteral("/inference"), file, {QStringLiteral("response_format=text")}),
              "hello how are you\n 200");
}

TEST_F(ServerProgramTest, SubtitlesAndDetailsAreAnsweredToCurl) {
    startServer();
    const QString file = fileOf(WAV::encode(speech(sentence), 16000, 1));
    const auto as = [&](const char* format) {
        return upload(QStringLiteral("/v1/audio/transcriptions"), file,
                      {QStringLiteral("response_format=") + QLatin1String(format)});
    };
    const QString srt = QString::fromStdString(as("srt"));
    EXPECT_TRUE(srt.startsWith(QStringLiteral("1\n00:00:00,000 --> 00:00:0"))) << srt.toStdString();
    EXPECT_TRUE(srt.endsWith(QStringLiteral("\nhello how are you\n\n 200")));
    const QString vtt = QString::fromStdString(as("vtt"));
    EXPECT_TRUE(vtt.startsWith(QStringLiteral("WEBVTT\n\n00:00:00.000 --> 00:00:0")));
    EXPECT_TRUE(vtt.endsWith(QStringLiteral("\nhello how are you\n\n 200")));
    const QString verbose = QString::fromStdString(as("verbose_json"));
    EXPECT_TRUE(
        verbose.startsWith(QStringLiteral(R"({"task":"transcribe","language":"english",)")));
    EXPECT_TRUE(verbose.contains(QStringLiteral(R"("text":"hello how are you","tokens":[])")));
    EXPECT_TRUE(verbose.contains(QStringLiteral(R"("usage":{"type":"duration","seconds":)")));
}

TEST_F(ServerProgramTest, ThirtyTwoMixedUploadsAtOnceGetTheRightAnswers) {
    startServer();
    const auto samples = speech(sentence);
    struct Kind {
        QString path;
        QString file;
        std::string answer;
    };
    const std::string text = R"({"text":"hello how are you"} 200)";
    const QString inference = QStringLiteral("/inference");
    const std::string error =
        R"({"error":{"message":"This is not a WAV file.","type":"invalid_request_error",)"
        R"("param":"file","code":null}} 400)";
    const QString openai = QStringLiteral("/v1/audio/transcriptions");
    const QString broken = fileOf({'n', 'o'});
    const QString empty = fileOf(WAV::encode({}, 16000, 1));
    const std::vector<Kind> kinds{
        {inference, fileOf(WAV::encode(samples, 16000, 1)), text},
        {inference, broken, error},
        {inference, empty, R"({"text":""} 200)"},
        {openai, broken, error},
        {openai, fileOf(resampled(samples, 48000, 2)), text},
        {inference, broken, error},
        {openai, empty, R"({"text":""} 200)"},
        {openai, broken, error},
    };
    std::vector<std::unique_ptr<ChildProcess>> clients;
    for (std::size_t i = 0; i < 32; ++i) {
        const Kind& kind = kinds[i % kinds.size()];
        clients.push_back(startCurl(kind.path, kind.file, {}));
    }
    for (std::size_t i = 0; i < clients.size(); ++i)
        EXPECT_EQ(answerTo(*clients[i]), kinds[i % kinds.size()].answer) << i;
}

TEST_F(ServerProgramTest, TheEndpointFileIsThereFromTheFirstLineToTheEnd) {
    startServer();
    QFile file(m_endpointPath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString address = QUrl(m_url).authority();
    const QString content = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(content.startsWith(QStringLiteral("local=%1\ndisplay=%1\nrtf=").arg(address)));
    EXPECT_GT(content.section(QStringLiteral("rtf="), 1).trimmed().toDouble(), 0);
    endServer(SIGTERM);
    EXPECT_EQ(m_server->exitCode(), 0);
    EXPECT_FALSE(hasEndpointFile());
}

TEST_F(ServerProgramTest, AnInterruptEndsItTheSameWay) {
    startServer();
    endServer(SIGINT);
    EXPECT_EQ(m_server->exitCode(), 0);
    EXPECT_FALSE(hasEndpointFile());
}

TEST_F(ServerProgramTest, ATerminalThatIsClosedEndsItTheSameWay) {
    startServer();
    endServer(SIGHUP);
    EXPECT_EQ(m_server->exitCode(), 0);
    EXPECT_FALSE(hasEndpointFile());
}

TEST_F(ServerProgramTest, TheFileOfAServerThatWasThereFirstStays) {
    startServer();
    const auto address = [this] {
        QFile file(m_endpointPath);
        return file.open(QIODevice::ReadOnly) ? file.readLine() : QByteArray();
    };
    const QByteArray before = address();
    const auto first = std::move(m_server);
    startServer();
    endServer(SIGTERM);
    EXPECT_EQ(address(), before);
    EXPECT_TRUE(hasEndpointFile());
    first->end();
    EXPECT_FALSE(hasEndpointFile());
}

TEST_F(ServerProgramTest, TheLogTellsWhichEngineTranscribesAndWhyNotWhisper) {
    const auto settings = [](const std::string&) { return std::nullopt; };
    const auto options =
        ServerOptions::parse({"--endpoint-file", m_endpointPath.toStdString()}, settings).value();
    FakeLog log;
    ServerProgram server(options, settings, nullptr, log);
    std::jthread thread([&](const std::stop_token& stop) { EXPECT_TRUE(server.serve(stop)); });
    EXPECT_TRUE(waitUntil([&] { return log.contains("Transcribing with pocketsphinx"); },
                          std::chrono::seconds(60)));
    EXPECT_TRUE(log.contains("There is no program whisper-server."));
    EXPECT_TRUE(log.contains("PocketSphinx takes its place."));
}

TEST_F(ServerProgramTest, WithoutAnEndpointFileItDoesNotServe) {
    EXPECT_EQ(exitCodeOf({QStringLiteral("--endpoint-file=/nowhere/endpoint")}), 1);
}

TEST_F(ServerProgramTest, AnAddressInUseIsAFailure) {
    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    EXPECT_EQ(exitCodeOf({QStringLiteral("--port=%1").arg(other.serverPort())}), 1);
    EXPECT_FALSE(hasEndpointFile());
}

TEST_F(ServerProgramTest, HelpAndVersionSucceedAndWrongUsageIsTwo) {
    EXPECT_TRUE(program({QStringLiteral("--help")})->readAll().startsWith("Usage:"));
    EXPECT_TRUE(program({QStringLiteral("--version")})->readAll().startsWith("quietlark-server "));
    EXPECT_EQ(exitCodeOf({QStringLiteral("--help")}), 0);
    EXPECT_EQ(exitCodeOf({QStringLiteral("--volume")}), 2);
}

TEST_F(ServerProgramTest, ItLoadsNoQt) {
    const QByteArray libraries = ChildProcess(QStringLiteral("ldd"), {serverProgram}).readAll();
    EXPECT_TRUE(libraries.contains("libpocketsphinx"));
    EXPECT_FALSE(libraries.contains("libQt"));
}

}  // namespace quietlark
