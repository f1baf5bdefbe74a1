#include "commands/servers_command.h"

#include <utility>

#include <QCoreApplication>

#include "commands/console.h"
#include "transcription/transcriber.h"

namespace quietlark {

namespace {

class Sentences {
    Q_DECLARE_TR_FUNCTIONS(ServersCommand)

public:
    static QString none() { return tr("No transcription server announces itself here."); }
    static QString notWritten() { return tr("The result could not be written."); }
};

/// What the network says, so that it can neither begin a line or column nor drive the terminal.
QString plain(const QString& text) {
    return Transcriber::withoutControlCharacters(text).simplified();
}

QString addressOf(const MDNSBrowser::Entry& server) {
    return QStringLiteral("%1:%2").arg(plain(server.host)).arg(server.port);
}

}  // namespace

ServersCommand::ServersCommand(DiscoveredServers& servers, Problem problem, Scheduler& scheduler,
                               Console& console)
    : m_servers(servers),
      m_problem(std::move(problem)),
      m_scheduler(scheduler),
      m_console(console) {}

void ServersCommand::run(const ServersArguments& arguments, DoneHandler onDone) {
    m_onDone = std::move(onDone);
    m_servers.start();
    m_scheduler.after(arguments.duration, &m_search, [this] { report(); });
}

void ServersCommand::report() {
    m_servers.stop();
    if (const auto problem = m_problem()) {
        m_console.complain(*problem);
        return m_onDone(ExitCode::Failed);
    }
    for (const auto& server : m_servers.remotes()) {
        if (print(server)) continue;
        m_console.complain(Sentences::notWritten());
        return m_onDone(ExitCode::Failed);
    }
    if (m_servers.remotes().empty()) m_console.complain(Sentences::none());
    m_onDone(ExitCode::Done);
}

bool ServersCommand::print(const MDNSBrowser::Entry& server) {
    const QString speed =
        server.rtf ? QStringLiteral("%1x").arg(*server.rtf, 0, 'f', 1) : QStringLiteral("-");
    const QString dash = QStringLiteral("-");
    return m_console.print(QStringList{plain(server.name), addressOf(server), speed,
                                       plain(server.model.value_or(dash)),
                                       plain(server.cpu.value_or(dash))}
                               .join(u'\t'));
}

}  // namespace quietlark
