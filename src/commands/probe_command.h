#pragma once

#include <functional>
#include <optional>

#include "commands/command_line.h"
#include "commands/exit_code.h"
#include "platform/cancellable.h"
#include "transcription/resolved_server.h"

namespace quietlark {

class Console;
class ServerResolver;

/// `quietlark probe`: what kind of server answers at an address.
class ProbeCommand {
public:
    using DoneHandler = std::function<void(ExitCode)>;

    ProbeCommand(ServerResolver& resolver, Console& console);

    /// Runs once.
    void run(const ProbeArguments& arguments, DoneHandler onDone);

private:
    void onResolved(const QString& address, const std::optional<ResolvedServer>& server);
    [[nodiscard]] bool print(const ResolvedServer& server);
    void fail(const QString& sentence);

    ServerResolver& m_resolver;
    Console& m_console;
    DoneHandler m_onDone;
    Cancellable m_question;
};

}  // namespace quietlark
