#include <csignal>
#include <cstdlib>
#include <iostream>
#include <thread>

#include <pthread.h>

#include "platform/linux/journal/journal_log.h"
#include "server/endpoint_file_writer.h"
#include "server/http_api.h"
#include "server/pocketsphinx_engine.h"
#include "server/self_test.h"
#include "server/serial_engine.h"
#include "server/server_options.h"
#include "server/speech_server.h"

namespace quietlark {
namespace {

enum ExitCode { Done = 0, Failed = 1, WrongUsage = 2 };

ExitCode fail(const std::string& sentence) {
    std::cerr << "quietlark-server: " << sentence << std::endl;
    return Failed;
}

std::optional<std::string> setting(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

/// "host:port", for the host that clients on this computer can use.
std::string localAddress(const std::string& host, int port) {
    std::string reachable = host;
    if (host == "0.0.0.0") reachable = "127.0.0.1";
    if (host == "::") reachable = "::1";
    const bool isIpv6 = reachable.find(':') != std::string::npos;
    return (isIpv6 ? "[" + reachable + "]" : reachable) + ":" + std::to_string(port);
}

/// Runs the server until a signal ends it.
ExitCode serve(SpeechServer& server, SpeechEngine& engine, EndpointFileWriter& endpointFile) {
    std::thread signalThread([&] {
        int signal = 0;
        const sigset_t signals = endingSignals();
        sigwait(&signals, &signal);
        endpointFile.withdraw();
        engine.stop();
        server.stop();
    });
    const bool wasStopped = server.run();
    pthread_kill(signalThread.native_handle(), SIGTERM);
    signalThread.join();
    return wasStopped ? Done : fail("The network connection was lost.");
}

ExitCode run(const ServerOptions& options) {
    // Blocked before any thread begins, so that only the one that waits for them gets them.
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    const auto pocketSphinx = PocketSphinxEngine::load();
    if (!pocketSphinx) return fail(pocketSphinx.error());
    SerialEngine engine(**pocketSphinx);
    JournalLog log("net.quietlark.server", "requests");
    HttpApi api(
        engine,
        {.limits = options.limits, .audience = options.audience, .language = options.language});
    SpeechServer server(api, log);
    if (!server.bind(options.host, options.port.value_or(0)))
        return fail("Cannot listen on " + localAddress(options.host, options.port.value_or(0)) +
                    ". Another program may be using it.");
    const auto speed = measureSpeed(engine);
    if (!speed) return fail(speed.error());

    const std::string address = localAddress(options.host, server.port());
    EndpointFileWriter endpointFile(options.endpointFile);
    const auto published =
        endpointFile.publish({.local = address, .display = address, .rtf = *speed});
    if (!published) return fail(published.error());
    std::cout << "listening on http://" << address << std::endl;
    return serve(server, engine, endpointFile);
}

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    using namespace quietlark;
    const auto options = ServerOptions::parse({argv + 1, argv + argc}, &setting);
    if (!options) {
        std::cerr << "quietlark-server: " << options.error() << "\n" << ServerOptions::help();
        return WrongUsage;
    }
    if (options->action == ServerOptions::Action::ShowHelp) {
        std::cout << ServerOptions::help();
        return Done;
    }
    if (options->action == ServerOptions::Action::ShowVersion) {
        std::cout << "quietlark-server " QUIETLARK_VERSION "\n";
        return Done;
    }
    return run(*options);
}
