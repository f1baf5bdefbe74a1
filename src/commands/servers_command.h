#pragma once

#include <functional>

#include <QObject>

#include "commands/command_line.h"
#include "commands/exit_code.h"
#include "platform/scheduler.h"
#include "servers/discovered_servers.h"

namespace quietlark {

class Console;
class ServerRanker;

/// `quietlark servers`: who offers transcription on the local network, how fast compared with this
/// computer, and whom to prefer.
class ServersCommand {
public:
    using DoneHandler = std::function<void(ExitCode)>;
    /// Why nothing can be found here, or nothing when the search works.
    using Problem = std::function<std::optional<QString>()>;

    ServersCommand(DiscoveredServers& servers, const ServerRanker& ranker, Problem problem,
                   Scheduler& scheduler, Console& console);

    /// Runs once. That there is no server is an answer, not a failure.
    void run(const ServersArguments& arguments, DoneHandler onDone);

private:
    void report();
    [[nodiscard]] bool printAll();
    [[nodiscard]] QString line(const MDNSBrowser::Entry& server) const;

    DiscoveredServers& m_servers;
    const ServerRanker& m_ranker;
    const Problem m_problem;
    Scheduler& m_scheduler;
    Console& m_console;
    DoneHandler m_onDone;
    QObject m_search;
};

}  // namespace quietlark
