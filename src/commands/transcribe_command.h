#pragma once

#include <functional>
#include <optional>

#include <QString>

#include "audio/wav.h"
#include "commands/command_line.h"
#include "commands/configured_server.h"
#include "commands/exit_code.h"
#include "platform/cancellable.h"
#include "transcription/resolved_server.h"
#include "transcription/transcription_client.h"

namespace quietlark {

class Console;
class ServerResolver;
struct Config;

/// `quietlark transcribe`: one recording to a server, and its text to the console.
class TranscribeCommand {
public:
    using DoneHandler = std::function<void(ExitCode)>;

    TranscribeCommand(ServerResolver& resolver, TranscriptionClient& client,
                      ConfiguredServer configuredServer, const Config& config, Console& console);

    /// Runs once. A recording that cannot be used is refused before any server is asked.
    void run(const TranscribeArguments& arguments, DoneHandler onDone);

private:
    void onResolved(const QString& address, const std::optional<ResolvedServer>& server);
    void onText(const TranscriptionClient::Text& text);
    void fail(const QString& sentence);

    ServerResolver& m_resolver;
    TranscriptionClient& m_client;
    const ConfiguredServer m_configuredServer;
    const Config& m_config;
    Console& m_console;
    WavBytes m_wav;
    QString m_language;
    DoneHandler m_onDone;
    Cancellable m_question;
};

}  // namespace quietlark
