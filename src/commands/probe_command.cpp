#include "commands/probe_command.h"

#include <utility>

#include <QCoreApplication>

#include "commands/console.h"
#include "transcription/server_resolver.h"
#include "transcription/transcriber.h"

namespace quietlark {

namespace {

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(ProbeCommand)

public:
    static QString unknown(const QString& address) {
        return tr("No transcription server answers at %1.").arg(address);
    }
    static QString notWritten() { return tr("The result could not be written."); }
};

}  // namespace

ProbeCommand::ProbeCommand(ServerResolver& resolver, Console& console)
    : m_resolver(resolver), m_console(console) {}

void ProbeCommand::run(const ProbeArguments& arguments, DoneHandler onDone) {
    m_onDone = std::move(onDone);
    m_question = m_resolver.resolveServer(
        arguments.server, ServerResolver::usualTimeout,
        [this, address = arguments.server](const std::optional<ResolvedServer>& server) {
            onResolved(address, server);
        });
}

void ProbeCommand::onResolved(const QString& address, const std::optional<ResolvedServer>& server) {
    if (!server) return fail(Sentences::unknown(address));
    if (!print(*server)) return fail(Sentences::notWritten());
    m_onDone(ExitCode::Done);
}

bool ProbeCommand::print(const ResolvedServer& server) {
    // The name is the server's; it must not begin a line of its own or drive the terminal.
    const QString model = Transcriber::plainLine(server.model.value_or(QString()));
    return m_console.print(QStringLiteral("flavor=") + rawValue(server.flavor)) &&
           m_console.print(QStringLiteral("url=") + server.url.toString(QUrl::FullyEncoded)) &&
           m_console.print(QStringLiteral("model=") + model);
}

void ProbeCommand::fail(const QString& sentence) {
    m_console.complain(sentence);
    m_onDone(ExitCode::Failed);
}

}  // namespace quietlark
