#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "peers/http_server.h"
#include "support/wait.h"

namespace quietlark {

/// The program itself, in a home of its own, and a server for it to talk to.
class ProgramFixture : public testing::Test {
protected:
    struct Outcome {
        int exitCode = -1;  ///< stays when the program did not end by itself
        QByteArray results;
        QByteArray messages;
    };

    Outcome run(const QStringList& arguments, const QByteArray& input = {}) {
        QProcess program;
        program.setProcessEnvironment(environment());
        program.start(QStringLiteral(QUIETLARK_PROGRAM), arguments);
        program.write(input);
        program.closeWriteChannel();
        const auto hasEnded = [&program] { return program.state() == QProcess::NotRunning; };
        if (!waitUntil(hasEnded, std::chrono::seconds(60))) {
            program.kill();
            program.waitForFinished();
            return {};
        }
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return {program.exitCode(), program.readAllStandardOutput(),
                program.readAllStandardError()};
    }

    [[nodiscard]] QString path(const char* name) const {
        return m_home.filePath(QString::fromUtf8(name));
    }
    [[nodiscard]] QString write(const char* name, const QByteArray& content) const {
        QDir().mkpath(QFileInfo(path(name)).absolutePath());
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path(name);
    }

    /// That the program said nothing but one sentence, and failed.
    static void expectFailure(const Outcome& outcome, const char* words, int exitCode = 1) {
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.results, "");
        EXPECT_TRUE(outcome.messages.startsWith("quietlark: ")) << outcome.messages.toStdString();
        EXPECT_TRUE(outcome.messages.contains(words)) << outcome.messages.toStdString();
        EXPECT_TRUE(outcome.messages.endsWith(".\n")) << outcome.messages.toStdString();
        EXPECT_EQ(outcome.messages.count('\n'), 1) << outcome.messages.toStdString();
    }

    QTemporaryDir m_home;
    HttpServer m_server;

private:
    [[nodiscard]] QProcessEnvironment environment() const {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
        environment.insert(QStringLiteral("QUIETLARK_ENDPOINT_FILE"), path("endpoint"));
        return environment;
    }
};

}  // namespace quietlark
