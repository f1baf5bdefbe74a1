#include "commands/transcribe_command.h"

#include <utility>

#include <QCoreApplication>

#include "commands/console.h"
#include "commands/recording_file.h"
#include "config/config.h"
#include "transcription/server_resolver.h"

namespace quietlark {

namespace {

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(TranscribeCommand)

public:
    static QString unreachable(const QString& address) {
        return tr("No transcription server could be reached at %1.").arg(address);
    }
    static QString notWritten() { return tr("The text could not be written."); }
};

}  // namespace

TranscribeCommand::TranscribeCommand(ServerResolver& resolver, TranscriptionClient& client,
                                     ConfiguredServer configuredServer, const Config& config,
                                     Console& console)
    : m_resolver(resolver),
      m_client(client),
      m_configuredServer(std::move(configuredServer)),
      m_config(config),
      m_console(console) {}

void TranscribeCommand::run(const TranscribeArguments& arguments, DoneHandler onDone) {
    m_onDone = std::move(onDone);
    m_language = arguments.language.value_or(m_config.language);
    auto wav = readRecording(arguments.file);
    if (!wav) return fail(wav.error());
    m_wav = std::move(*wav);
    const ConfiguredServer address =
        arguments.server ? ConfiguredServer(*arguments.server) : m_configuredServer;
    if (!address) return fail(address.error());
    m_question = m_resolver.resolveServer(
        *address, ServerResolver::usualTimeout,
        [this, address = *address](const std::optional<ResolvedServer>& server) {
            onResolved(address, server);
        });
}

void TranscribeCommand::onResolved(const QString& address,
                                   const std::optional<ResolvedServer>& server) {
    if (!server) return fail(Sentences::unreachable(address));
    m_question =
        m_client.transcribe(*server, m_wav, m_language,
                            [this](const TranscriptionClient::Text& text) { onText(text); });
}

void TranscribeCommand::onText(const TranscriptionClient::Text& text) {
    if (!text) return fail(text.error().localizedDescription());
    if (!m_console.print(*text)) return fail(Sentences::notWritten());
    m_onDone(ExitCode::Done);
}

void TranscribeCommand::fail(const QString& sentence) {
    m_console.complain(sentence);
    m_onDone(ExitCode::Failed);
}

}  // namespace quietlark
