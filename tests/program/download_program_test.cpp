#include <csignal>

#include "local_server/model_files.h"
#include "local_server/resume_data.h"
#include "program/desktop_program_fixture.h"

namespace quietlark {
namespace {

/// The tray program with the server on this computer chosen, and no model yet.
class DownloadProgramTest : public DesktopProgramFixture {
protected:
    DownloadProgramTest() {
        static_cast<void>(
            write("config/Quietlark/config.json",
                  R"({ "hotkey": "ctrl+alt+space", "language": "", "launchAtLogin": false,
                   "onboardingComplete": true, "onboardingStep": 0,
                   "serverMode": { "local": {} }, "toggleHotkey": "" })"));
        const QDir bin = QFileInfo(QStringLiteral(QUIETLARK_PROGRAM)).dir();
        setVariable("QUIETLARK_APPLICATIONS",
                    QDir::cleanPath(bin.filePath(QStringLiteral("../.."))));
        setVariable("QUIETLARK_MODEL_URL", m_server.url(QStringLiteral("/model.bin")));
        setVariable("XDG_DATA_HOME", path("data"));
    }
    void setVariable(const char* name, const QString& value) {
        m_variables += QStringLiteral("export %1='%2'; ").arg(QString::fromUtf8(name), value);
    }

    QString m_variables;
    const ModelFiles m_files{path("data/Quietlark/models")};
};

TEST_F(DownloadProgramTest, TheEndOfTheProgramSavesAllThatWasReceived) {
    const qsizetype received = 2'500'000;
    m_server.on("/model.bin", http_reply::bytesAndSilence(
                                  "HTTP/1.1 200 OK\r\nETag: \"one\"\r\nContent-Length: 4000000\r\n"
                                  "\r\n" +
                                  QByteArray(received, 'x')));
    ChildProcess& program = start(m_variables);
    ASSERT_TRUE(waitUntil([&] { return QFile(m_files.received()).size() == received; }));
    ::kill(static_cast<pid_t>(program.processId()), SIGTERM);
    EXPECT_FALSE(program.readAll().isNull()) << "it did not end";
    EXPECT_EQ(program.exitCode(), 0);
    const auto record = ResumeData::read(m_files.resume());
    ASSERT_TRUE(record);
    EXPECT_EQ(record->syncedBytes, received);
}

}  // namespace
}  // namespace quietlark
