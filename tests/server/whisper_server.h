#pragma once

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "peers/child_process.h"

namespace quietlark {

/// A running child of a process; 0 when there is none.
[[nodiscard]] inline pid_t childOf(pid_t parent) {
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        std::ifstream file("/proc/" + name.toStdString() + "/stat");
        std::string content;
        std::getline(file, content);
        // The name of the program, in parentheses, may hold anything.
        std::istringstream rest(content.substr(content.rfind(')') + 1));
        std::string state;
        pid_t found = 0;
        if (rest >> state >> found && found == parent && state != "Z") return name.toInt();
    }
    return 0;
}

/// The real server program, with whisper.cpp's server found in its PATH and a model where the
/// application puts it.
class WhisperServer {
public:
    /// `engine` is the path of whisper.cpp's server; `model` is what the model's file holds.
    WhisperServer(const QString& engine, const std::string& model) {
        m_folder.mkpath(QStringLiteral("Quietlark/models"));
        std::ofstream(modelFile().toStdString()) << model;
        QFile::link(engine, m_folder.filePath(QStringLiteral("whisper-server")));
    }

    void launch(const QStringList& arguments = {}) {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), m_folder.path());
        environment.insert(QStringLiteral("PATH"),
                           m_folder.path() + QStringLiteral(":/usr/bin:/bin"));
        environment.insert(QStringLiteral("QUIETLARK_ENDPOINT_FILE"), endpointFile());
        m_process = std::make_unique<ChildProcess>(QStringLiteral(QUIETLARK_SERVER_PROGRAM),
                                                   arguments, environment);
    }

    /// The first line on its standard output; empty when it ended without one.
    std::string start(const QStringList& arguments = {}) {
        launch(arguments);
        const std::string line = m_process->readLine(std::chrono::seconds(60)).toStdString();
        const bool isListening = line.starts_with("listening on ");
        m_port = isListening ? std::stoi(line.substr(line.rfind(':') + 1)) : 0;
        return line;
    }

    [[nodiscard]] ChildProcess& process() { return *m_process; }
    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] QString modelFile() const {
        return m_folder.filePath(QStringLiteral("Quietlark/models/active.bin"));
    }
    [[nodiscard]] QString endpointFile() const {
        return m_folder.filePath(QStringLiteral("endpoint"));
    }
    [[nodiscard]] bool hasEndpointFile() const { return QFile::exists(endpointFile()); }

    /// The speed factor in the endpoint file; 0 when there is none.
    [[nodiscard]] double publishedSpeed() const {
        QFile file(endpointFile());
        if (!file.open(QIODevice::ReadOnly)) return 0;
        return QString::fromUtf8(file.readAll())
            .section(QStringLiteral("rtf="), 1)
            .trimmed()
            .toDouble();
    }

    /// The process of whisper.cpp's server; 0 when there is none.
    [[nodiscard]] pid_t engineId() const {
        return childOf(static_cast<pid_t>(m_process->processId()));
    }

    /// Memory that the server has in use, in KiB.
    [[nodiscard]] long residentKibibytes() const {
        std::ifstream file("/proc/" + std::to_string(m_process->processId()) + "/status");
        std::string line;
        while (std::getline(file, line))
            if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
        return 0;
    }

    /// How many files, sockets among them, the server has open.
    [[nodiscard]] qsizetype openFiles() const {
        const QDir folder(QStringLiteral("/proc/%1/fd").arg(m_process->processId()));
        return folder.entryList(QDir::Files | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot)
            .size();
    }

private:
    QTemporaryDir m_temporary;
    QDir m_folder{m_temporary.path()};
    std::unique_ptr<ChildProcess> m_process;
    int m_port = 0;
};

}  // namespace quietlark
