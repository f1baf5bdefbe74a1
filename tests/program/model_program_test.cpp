#include <csignal>

#include <unistd.h>

#include "peers/http_server.h"
#include "program/model_program_fixture.h"
#include "program/terminal_session.h"

namespace quietlark {

namespace {

class ModelProgramTest : public ModelProgramFixture {
protected:
    ModelProgramTest() {
        m_url = m_server.url(QStringLiteral("/model.bin"));
        m_sha256 = sha256(m_model);
    }

    void serverDoes(const HttpServer::Reply& reply) { m_server.on("/model.bin", reply); }
    [[nodiscard]] HttpServer::Reply answer() const {
        return http_reply::answer(200, m_model, "ETag: \"one\"\r\n");
    }
    /// A good answer that stops in the middle.
    [[nodiscard]] HttpServer::Reply half() const {
        return http_reply::bytesAndSilence("HTTP/1.1 200 OK\r\nETag: \"one\"\r\nContent-Length: " +
                                           QByteArray::number(m_model.size()) + "\r\n\r\n" +
                                           m_model.first(2 * mebibyte));
    }

    const QByteArray m_model = someBytes(4 * mebibyte);
    HttpServer m_server;
};

/// On disks of their own, which takes the right to mount them.
class ModelDiskProgramTest : public ModelProgramTest {
protected:
    void SetUp() override {
        const std::string reason = whyNoMounts();
        if (!reason.empty()) GTEST_SKIP() << "no disk of one's own: " << reason;
    }
};

}  // namespace

TEST_F(ModelProgramTest, DownloadPrintsWhereTheModelIs) {
    serverDoes(answer());
    const Outcome outcome = run(QStringLiteral("download"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.messages.toStdString();
    EXPECT_EQ(outcome.results, m_files.active().toUtf8() + '\n');
    EXPECT_EQ(read(m_files.active()), m_model);
}

TEST_F(ModelProgramTest, RootWritesNothingToTheHomeOfAnother) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root could";
    serverDoes(answer());
    ASSERT_EQ(::chown(QFile::encodeName(m_home.path()).constData(), 1234, 1234), 0);
    const Outcome outcome = run(QStringLiteral("download"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.results, "");
    EXPECT_TRUE(
        outcome.messages.endsWith("belongs to another user. Run quietlark as that user, "
                                  "without sudo.\n"))
        << outcome.messages.toStdString();
    EXPECT_TRUE(
        QDir(m_home.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST_F(ModelProgramTest, OffATerminalProgressComesInPlainLines) {
    serverDoes(answer());
    const Outcome outcome = run(QStringLiteral("download"));
    EXPECT_TRUE(outcome.messages.contains(" of 4.2 MB")) << outcome.messages.toStdString();
    EXPECT_FALSE(outcome.messages.contains('\r'));
    EXPECT_FALSE(outcome.messages.contains('\x1b'));
    EXPECT_TRUE(outcome.messages.endsWith('\n'));
}

TEST_F(ModelProgramTest, AModelThatIsThereIsNotFetchedAgain) {
    serverDoes(answer());
    run(QStringLiteral("download"));
    EXPECT_EQ(run(QStringLiteral("download")).exitCode, 0);
    EXPECT_EQ(m_server.requests().size(), 1U);
}

TEST_F(ModelProgramTest, StatusTellsWhatIsThere) {
    EXPECT_EQ(run(QStringLiteral("status")).results,
              "state=missing\nfile=" + m_files.active().toUtf8() + "\nbytes=0\ntotal=\n");
    serverDoes(answer());
    run(QStringLiteral("download"));
    EXPECT_EQ(
        run(QStringLiteral("status")).results,
        "state=installed\nfile=" + m_files.active().toUtf8() + "\nbytes=4194304\ntotal=4194304\n");
}

TEST_F(ModelProgramTest, AFailureIsASentenceAndAnExitCode) {
    const Outcome outcome = run(QStringLiteral("download"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.results, "");
    EXPECT_EQ(outcome.messages,
              "quietlark: Install failed: HTTP 404 from " + m_url.toUtf8() + "\n");
}

TEST_F(ModelProgramTest, AnInterruptIsACancellationAndTheNextCallContinues) {
    serverDoes(half());
    QProcess program;
    program.setProcessEnvironment(environment());
    program.start(QStringLiteral(QUIETLARK_PROGRAM),
                  {QStringLiteral("model"), QStringLiteral("download")});
    ASSERT_TRUE(waitUntil([this] { return QFile(m_files.received()).size() == 2 * mebibyte; }));
    ::kill(static_cast<pid_t>(program.processId()), SIGINT);
    ASSERT_TRUE(waitUntil([&] { return program.state() == QProcess::NotRunning; }));
    const QByteArray messages = program.readAllStandardError();
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 1) << messages.toStdString();
    EXPECT_TRUE(messages.endsWith("quietlark: Stopped; the next download continues from here.\n"))
        << messages.toStdString();
    EXPECT_TRUE(run(QStringLiteral("status")).results.startsWith("state=incomplete\n"));
    EXPECT_TRUE(read(m_files.resume()).contains("\"syncedBytes\": 2097152"));

    serverDoes(
        http_reply::bytesAndClose("HTTP/1.1 206 Rest\r\nETag: \"one\"\r\n"
                                  "Content-Range: bytes 2097152-4194303/4194304\r\n"
                                  "Content-Length: 2097152\r\n\r\n" +
                                  m_model.last(2 * mebibyte)));
    EXPECT_EQ(run(QStringLiteral("download")).exitCode, 0);
    EXPECT_EQ(m_server.requests().back().header("Range"), "bytes=2097152-");
    EXPECT_EQ(read(m_files.active()), m_model);
}

TEST_F(ModelProgramTest, ATerminalShowsABarThatGivesWayToTheResult) {
    serverDoes(answer());
    TerminalSession terminal(QStringLiteral(QUIETLARK_PROGRAM), {"model", "download"},
                             environment());
    ASSERT_TRUE(waitUntil([&] { return terminal.hasEnded(); }));
    EXPECT_EQ(terminal.exitCode(), 0);
    EXPECT_TRUE(terminal.output().startsWith("\r[")) << terminal.output().toStdString();
    EXPECT_TRUE(terminal.output().contains(" of 4.2 MB\x1b[K"));
    EXPECT_TRUE(terminal.output().endsWith("\r\x1b[K" + m_files.active().toUtf8() + "\r\n"));
}

TEST_F(ModelProgramTest, TheBarFitsTheTerminal) {
    serverDoes(answer());
    TerminalSession terminal(QStringLiteral(QUIETLARK_PROGRAM), {"model", "download"},
                             environment());
    ASSERT_TRUE(waitUntil([&] { return terminal.hasEnded(); }));
    const QByteArray bar = terminal.output().split('\r').at(1);
    EXPECT_TRUE(bar.startsWith('[')) << bar.toStdString();
    EXPECT_LT(bar.indexOf("\x1b[K"), TerminalSession::columns) << bar.toStdString();
}

TEST_F(ModelProgramTest, ControlCOnATerminalIsACancellationAndTheNextCallContinues) {
    serverDoes(half());
    TerminalSession terminal(QStringLiteral(QUIETLARK_PROGRAM), {"model", "download"},
                             environment());
    ASSERT_TRUE(waitUntil([this] { return QFile(m_files.received()).size() == 2 * mebibyte; }));
    terminal.type("\x03");
    ASSERT_TRUE(waitUntil([&] { return terminal.hasEnded(); }));
    EXPECT_EQ(terminal.exitCode(), 1);
    EXPECT_TRUE(terminal.output().endsWith(
        "\r\x1b[Kquietlark: Stopped; the next download continues from here.\r\n"))
        << terminal.output().toStdString();
    serverDoes(answer());
    EXPECT_EQ(run(QStringLiteral("download")).exitCode, 0);
    EXPECT_EQ(m_server.requests().back().header("Range"), "bytes=2097152-");
}

TEST_F(ModelDiskProgramTest, AFullDiskIsASentence) {
    // Nobody can tell beforehand when the server does not say the length.
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nETag: \"one\"\r\n\r\n" + m_model));
    const Outcome outcome = runWithMounts(
        "mount -t tmpfs -o size=2m tmpfs \"$2\"\n"
        "\"$1\" model download || code=$?\n"
        "ls \"$2/Quietlark/models\"\n"
        "exit $code");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.messages.endsWith("quietlark: Install failed: No space left on device\n"))
        << outcome.messages.toStdString();
    EXPECT_FALSE(outcome.results.contains("active.bin\n"));
}

TEST_F(ModelDiskProgramTest, AFullDiskDoesNotCostWhatIsThere) {
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nETag: \"one\"\r\n\r\n" + m_model));
    const Outcome outcome = runWithMounts(
        "mount -t tmpfs -o size=2m tmpfs \"$2\"\n"
        "\"$1\" model download || true\n"
        "mount -o remount,size=20m \"$2\"\n"
        "\"$1\" model download || true\n"
        "\"$1\" model status");
    const QByteArray range = m_server.requests().back().header("Range");
    EXPECT_GT(range.sliced(6).chopped(1).toLongLong(), mebibyte) << range.toStdString();
    EXPECT_TRUE(outcome.results.contains("state=installed")) << outcome.messages.toStdString();
}

TEST_F(ModelDiskProgramTest, TooLittleSpaceIsASentenceBeforeTheDownload) {
    serverDoes(answer());
    const Outcome outcome = runWithMounts(
        "mount -t tmpfs -o size=2m tmpfs \"$2\"\n"
        "\"$1\" model download");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(
        outcome.messages.startsWith("quietlark: There is not enough free space for the model: "))
        << outcome.messages.toStdString();
}

TEST_F(ModelDiskProgramTest, AModelsDirectoryThatCannotBeWrittenIsASentence) {
    serverDoes(answer());
    const Outcome outcome = runWithMounts(
        "mount -t tmpfs tmpfs \"$2\"\n"
        "mkdir -p \"$2/Quietlark/models\"\n"
        "mount -o remount,ro \"$2\"\n"
        "\"$1\" model download");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.messages, "quietlark: Install failed: Read-only file system\n");
}

TEST_F(ModelDiskProgramTest, AModelsDirectoryThatCannotBeMadeIsASentence) {
    serverDoes(answer());
    const Outcome outcome = runWithMounts(
        "mount -t tmpfs tmpfs \"$2\"\n"
        "mount -o remount,ro \"$2\"\n"
        "\"$1\" model download");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.messages,
              "quietlark: Couldn't create models directory: Read-only file system\n");
    EXPECT_TRUE(m_server.requests().empty());
}

}  // namespace quietlark
