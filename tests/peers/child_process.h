#pragma once

#include <chrono>

#include <QByteArray>
#include <QProcess>
#include <QStringList>

namespace quietlark {

/// Another program, started for one test and ended with it, also when the test program is killed.
class ChildProcess {
public:
    explicit ChildProcess(
        const QString& program, const QStringList& arguments = {},
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());
    ~ChildProcess();

    [[nodiscard]] bool isRunning() const;
    [[nodiscard]] qint64 processId() const { return m_process.processId(); }

    /// Waits for the next whole line on standard output; null when none came in time.
    [[nodiscard]] QByteArray readLine(std::chrono::milliseconds limit = std::chrono::seconds(20));

    /// Writes a line to standard input.
    void writeLine(const QByteArray& line);

    /// Ends the program's standard input.
    void closeInput() { m_process.closeWriteChannel(); }

    /// Everything on standard output until the program ended; null when it did not end in time.
    [[nodiscard]] QByteArray readAll(std::chrono::milliseconds limit = std::chrono::seconds(20));

    [[nodiscard]] int exitCode() const { return m_process.exitCode(); }

    /// Ends the program: politely first, then for good.
    void end();

private:
    QProcess m_process;
};

}  // namespace quietlark
