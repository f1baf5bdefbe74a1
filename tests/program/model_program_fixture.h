#pragma once

#include <random>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "local_server/model_files.h"
#include "support/wait.h"

namespace quietlark {

/// `quietlark model` in a home of its own.
class ModelProgramFixture : public testing::Test {
protected:
    struct Outcome {
        int exitCode = -1;  ///< stays when the program did not end by itself
        QByteArray results;
        QByteArray messages;
    };

    Outcome run(const QString& action) {
        return run(QStringLiteral(QUIETLARK_PROGRAM), {QStringLiteral("model"), action});
    }
    /// Why runWithMounts() cannot work here; empty when it can.
    [[nodiscard]] std::string whyNoMounts() {
        const Outcome outcome = runWithMounts("mount -t tmpfs tmpfs \"$2\"");
        return outcome.exitCode == 0 ? std::string() : outcome.messages.toStdString();
    }
    /// A shell script, with the program and the home as its first two arguments, in which file
    /// systems may be mounted: nobody else sees them.
    Outcome runWithMounts(const char* script) {
        return run(QStringLiteral("unshare"),
                   {QStringLiteral("--map-root-user"), QStringLiteral("--mount"),
                    QStringLiteral("--propagation"), QStringLiteral("private"),
                    QStringLiteral("sh"), QStringLiteral("-ec"), QString::fromUtf8(script),
                    QStringLiteral("sh"), QStringLiteral(QUIETLARK_PROGRAM), m_home.path()});
    }

    [[nodiscard]] QProcessEnvironment environment() const {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), m_home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                           m_home.filePath(QStringLiteral("config")));
        environment.insert(QStringLiteral("QUIETLARK_MODEL_URL"), m_url);
        environment.insert(QStringLiteral("QUIETLARK_MODEL_SHA256"), m_sha256);
        return environment;
    }

    [[nodiscard]] static QByteArray someBytes(qsizetype count) {
        std::mt19937 random(1);
        QByteArray bytes(count, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        return bytes;
    }
    [[nodiscard]] static QString sha256(const QByteArray& bytes) {
        return QString::fromLatin1(
            QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
    }
    [[nodiscard]] static QByteArray read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static constexpr qsizetype mebibyte = 1024 * 1024;

    QTemporaryDir m_home;
    const ModelFiles m_files{m_home.filePath(QStringLiteral("Quietlark/models"))};
    QString m_url;     ///< where the program looks for the model
    QString m_sha256;  ///< what it is held to; empty for nothing

private:
    Outcome run(const QString& command, const QStringList& arguments) {
        QProcess program;
        program.setProcessEnvironment(environment());
        program.start(command, arguments);
        program.closeWriteChannel();
        const auto hasEnded = [&program] { return program.state() == QProcess::NotRunning; };
        if (!waitUntil(hasEnded, std::chrono::seconds(60))) {
            program.kill();
            program.waitForFinished();
            return {};
        }
        return {program.exitCode(), program.readAllStandardOutput(),
                program.readAllStandardError()};
    }
};

}  // namespace quietlark
