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

/// The real server program, with the stand-in of whisper.cpp's server found in its PATH and a model
/// where the application puts it.
class WhisperServer {
public:
    /// `model` says how the stand-in behaves.
    explicit WhisperServer(const std::string& model) {
        m_folder.mkpath(QStringLiteral("Quietlark/models"));
        std::ofstream(
            m_folder.filePath(QStringLiteral("Quietlark/models/active.bin")).toStdString())
            << model;
        QFile::link(QStringLiteral(QUIETLARK_WHISPER_STAND_IN),
                    m_folder.filePath(QStringLiteral("whisper-server")));
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
    [[nodiscard]] QString endpointFile() const {
        return m_folder.filePath(QStringLiteral("endpoint"));
    }
    [[nodiscard]] bool hasEndpointFile() const { return QFile::exists(endpointFile()); }

    /// The stand-in's process; 0 when there is none.
    [[nodiscard]] pid_t engineId() const {
        const auto server = static_cast<pid_t>(m_process->processId());
        for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
            std::ifstream file("/proc/" + name.toStdString() + "/stat");
            std::string content;
            std::getline(file, content);
            // The name of the program, in parentheses, may hold anything.
            std::istringstream rest(content.substr(content.rfind(')') + 1));
            std::string state;
            pid_t parent = 0;
            if (rest >> state >> parent && parent == server && state != "Z") return name.toInt();
        }
        return 0;
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
