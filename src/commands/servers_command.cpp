#include "commands/servers_command.h"

#include <cmath>
#include <utility>

#include <QCoreApplication>

#include "commands/console.h"
#include "servers/server_copy.h"
#include "servers/server_ranker.h"
#include "servers/server_recommendation.h"
#include "transcription/transcriber.h"

namespace quietlark {

namespace {

class Sentences {
    Q_DECLARE_TR_FUNCTIONS(ServersCommand)

public:
    static QString none() { return tr("No transcription server announces itself here."); }
    static QString notWritten() { return tr("The result could not be written."); }
    static QString recommended(const QString& what) { return tr("Recommended: %1").arg(what); }
    static QString thisComputer(const std::optional<QString>& cpu) {
        return cpu ? tr("this computer (%1)").arg(*cpu) : tr("this computer");
    }
    static QString noComparison() {
        return tr("No recommendation: the speed of this computer or of the servers is not known.");
    }
};

using Transcriber::plainLine;

const QString dash = QStringLiteral("-");

QString addressOf(const MDNSBrowser::Entry& server) {
    return QStringLiteral("%1:%2").arg(plainLine(server.host), QString::number(server.port));
}

/// Its address where nothing of the name would show.
QString nameOf(const MDNSBrowser::Entry& server) {
    const QString name = plainLine(server.name);
    return name.isEmpty() ? addressOf(server) : name;
}

QString orDash(const std::optional<QString>& text) {
    const QString line = plainLine(text.value_or(QString()));
    return line.isEmpty() ? dash : line;
}

/// A network may claim any speed; one that is out of this world takes no more room than others.
QString speedOf(double rtf) {
    const bool isUsual = std::abs(rtf) < 1e6;
    return QString::number(rtf, isUsual ? 'f' : 'e', 1) + u'x';
}

/// One sentence for each kind of recommendation.
struct RecommendationSentence {
    QString operator()(const RecommendLocal& recommendation) const {
        return Sentences::recommended(Sentences::thisComputer(recommendation.local.cpu));
    }
    QString operator()(const RecommendRemote& recommendation) const {
        const MDNSBrowser::Entry& server = recommendation.remote;
        return Sentences::recommended(nameOf(server) + u'\t' + addressOf(server));
    }
    QString operator()(const ShowList&) const { return Sentences::noComparison(); }
};

}  // namespace

ServersCommand::ServersCommand(DiscoveredServers& servers, const ServerRanker& ranker,
                               Problem problem, Scheduler& scheduler, Console& console)
    : m_servers(servers),
      m_ranker(ranker),
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
    if (m_servers.remotes().empty()) m_console.complain(Sentences::none());
    if (!printAll()) {
        m_console.complain(Sentences::notWritten());
        return m_onDone(ExitCode::Failed);
    }
    m_onDone(ExitCode::Done);
}

bool ServersCommand::printAll() {
    for (const auto& server : m_servers.remotes()) {
        if (!m_console.print(line(server))) return false;
    }
    return m_console.print(
        std::visit(RecommendationSentence{}, m_ranker.rank(m_servers.remotes())));
}

QString ServersCommand::line(const MDNSBrowser::Entry& server) const {
    const QString speed = server.rtf ? speedOf(*server.rtf) : dash;
    const auto hint = m_ranker.speedHint(server);
    return QStringList{
        nameOf(server),       addressOf(server),  speed,
        orDash(server.model), orDash(server.cpu), hint ? ServerCopy::hint(*hint) : dash}
        .join(u'\t');
}

}  // namespace quietlark
