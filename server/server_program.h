#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "server/endpoint_file_writer.h"
#include "server/engine_choice.h"
#include "server/measured_engine.h"
#include "server/server_presence.h"
#include "server/speech_server.h"

namespace quietlark {

/// The parts of the server put together: an engine, its speed, and the server before it.
class ServerProgram {
public:
    /// `announcer` may be null, when the network is not to know. The options must outlive it.
    ServerProgram(const ServerOptions& options, const ServerOptions::Settings& environment,
                  ServiceAnnouncer* announcer, Log& log);

    /// Serves until it is asked to stop; prints the first line of standard output when it can. The
    /// error is a sentence for the user.
    [[nodiscard]] tl::expected<void, std::string> serve(const std::stop_token& stop);

    /// Transcribes the options' recording and prints how fast that went.
    [[nodiscard]] tl::expected<void, std::string> bench(const std::stop_token& stop);

private:
    using Outcome = tl::expected<void, std::string>;

    // Whether it can be found once it can transcribe; the engine may take minutes to prepare.
    [[nodiscard]] Outcome checkPlace() const;
    [[nodiscard]] Outcome prepareEngine(const std::stop_token& stop);
    [[nodiscard]] Outcome use(EngineChoice::Engine engine, const std::stop_token& stop);
    [[nodiscard]] std::vector<std::string> ownNames() const;
    [[nodiscard]] Outcome listen(SpeechServer& server);
    [[nodiscard]] Outcome appear(int port);
    // Looks after the presence now and then, until it ends.
    [[nodiscard]] std::jthread keepPresent();

    const ServerOptions& m_options;
    const EngineChoice m_choice;
    Log& m_log;
    EndpointFileWriter m_endpointFile;
    ServerPresence m_presence;
    std::unique_ptr<SpeechEngine> m_engine;
    std::unique_ptr<MeasuredEngine> m_measured;
};

}  // namespace quietlark
