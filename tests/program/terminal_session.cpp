#include "program/terminal_session.h"

#include <cerrno>
#include <csignal>
#include <vector>

#include <QFile>
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quietlark {

namespace {

std::vector<char*> pointersTo(QByteArrayList& texts) {
    std::vector<char*> pointers;
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

TerminalSession::TerminalSession(const QString& program, const QByteArrayList& arguments,
                                 const QProcessEnvironment& environment) {
    // All of it before the fork, after which nothing may be allocated.
    QByteArrayList words = QByteArrayList{QFile::encodeName(program)} + arguments;
    QByteArrayList variables;
    for (const QString& variable : environment.toStringList())
        variables << variable.toLocal8Bit();
    const std::vector<char*> argumentPointers = pointersTo(words);
    const std::vector<char*> variablePointers = pointersTo(variables);
    const winsize size{24, columns, 0, 0};
    m_program = ::forkpty(&m_terminal, nullptr, nullptr, &size);
    if (m_program == 0) {
        ::execve(argumentPointers.front(), argumentPointers.data(), variablePointers.data());
        ::_exit(127);
    }
    ::fcntl(m_terminal, F_SETFL, O_NONBLOCK);
    ::fcntl(m_terminal, F_SETFD, FD_CLOEXEC);
}

TerminalSession::~TerminalSession() {
    if (m_program > 0) {
        ::kill(m_program, SIGKILL);
        ::waitpid(m_program, nullptr, 0);
    }
    ::close(m_terminal);
}

void TerminalSession::type(const QByteArray& keys) const {
    static_cast<void>(::write(m_terminal, keys.constData(), static_cast<size_t>(keys.size())));
}

bool TerminalSession::hasEnded() {
    if (m_program < 0) return true;
    char bytes[4096];
    ssize_t count = 0;
    while ((count = ::read(m_terminal, bytes, sizeof bytes)) > 0)
        m_output.append(bytes, count);
    // A terminal that nobody has open any more cannot be read.
    if (count < 0 && errno == EAGAIN) return false;
    int status = 0;
    if (::waitpid(m_program, &status, WNOHANG) != m_program) return false;
    m_program = -1;
    if (WIFEXITED(status)) m_exitCode = WEXITSTATUS(status);
    return true;
}

}  // namespace quietlark
