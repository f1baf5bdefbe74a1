#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QProcessEnvironment>
#include <QString>
#include <sys/types.h>

namespace quietlark {

/// A program on a terminal of its own, which is its input, its output and where Control-C comes
/// from.
class TerminalSession {
public:
    static constexpr int columns = 50;

    TerminalSession(const QString& program, const QByteArrayList& arguments,
                    const QProcessEnvironment& environment);
    /// Ends the program if it has not ended.
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    /// As if from the keyboard.
    void type(const QByteArray& keys) const;

    /// Takes what has been written since the last call; true once nothing more can come.
    [[nodiscard]] bool hasEnded();

    /// All that was written to the terminal, each line end as "\r\n".
    [[nodiscard]] const QByteArray& output() const { return m_output; }
    /// Of a program that has ended; -1 when a signal ended it.
    [[nodiscard]] int exitCode() const { return m_exitCode; }

private:
    int m_terminal = -1;
    pid_t m_program = -1;  ///< until it has ended
    QByteArray m_output;
    int m_exitCode = -1;
};

}  // namespace quietlark
