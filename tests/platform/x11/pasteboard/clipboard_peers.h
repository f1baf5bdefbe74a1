#pragma once

#include <initializer_list>
#include <memory>
#include <utility>

#include <QByteArray>
#include <QCoreApplication>
#include <QStringList>

#include "peers/child_process.h"
#include "peers/x_server.h"

namespace quietlark {

/// The path of a test peer that is built beside the test programs.
inline QString peerProgram(const char* name) {
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

/// Another program that has copied: see peers/clipboard_owner.cpp for what it can offer.
class ClipboardOwner {
public:
    ClipboardOwner(const XServer& server, const QStringList& offers)
        : m_process(server.start(peerProgram("clipboard_owner"), offers)) {
        (void)m_process->readLine();
    }

    /// Waits until it prints `line`; false when it does not.
    [[nodiscard]] bool prints(const QByteArray& line) {
        for (;;) {
            const QByteArray next = m_process->readLine();
            if (next == line || next.isNull()) return next == line;
        }
    }

    /// Lets it copy anew; how many lines it has printed until then.
    int linesBeforeCopyingAgain() {
        m_process->writeLine("again");
        int lines = 0;
        for (QByteArray line; (line = m_process->readLine()) != "owning" && !line.isNull();)
            ++lines;
        return lines;
    }

    [[nodiscard]] ChildProcess& process() { return *m_process; }

private:
    std::unique_ptr<ChildProcess> m_process;
};

/// Another program that pastes: see peers/clipboard_reader.cpp for its commands.
class ClipboardReader {
public:
    explicit ClipboardReader(const XServer& server)
        : m_process(server.start(peerProgram("clipboard_reader"), {})) {}

    /// Its answer to a command.
    QByteArray ask(const QByteArray& command) {
        m_process->writeLine(command);
        return m_process->readLine();
    }

    /// The next line of an answer of several.
    QByteArray nextLine() { return m_process->readLine(); }

    /// A text that was read; what else the answer says is left out.
    QByteArray text(const QByteArray& target = "UTF8_STRING") {
        const QByteArray answer = ask("get " + target);
        return answer == "refused" ? answer : answer.split(' ').mid(3).join(' ');
    }

    [[nodiscard]] ChildProcess& process() { return *m_process; }

private:
    std::unique_ptr<ChildProcess> m_process;
};

}  // namespace quietlark
