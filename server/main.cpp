#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>

#include <malloc.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include "platform/linux/journal/journal_log.h"
#include "server/avahi_announcer.h"
#include "server/server_options.h"
#include "server/server_program.h"

namespace quietlark {
namespace {

enum ExitCode { Done = 0, Failed = 1, WrongUsage = 2 };

std::optional<std::string> environmentVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

/// Every connection takes a descriptor, and more of them may wait than most systems give unasked.
void allowManyConnections() {
    constexpr rlim_t wanted = 4096;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted) return;
    limit.rlim_cur = std::min(wanted, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
}

/// Recordings are large and come one after the other. What one leaves is kept for the next: to get
/// it from the system anew, page by page, takes longer than anything else that is done with a
/// recording but to convert it. Two arenas, so that no more than twice as much is kept.
void keepMemoryForTheNextRecording() {
    constexpr int mebibyte = 1 << 20;
    mallopt(M_ARENA_MAX, 2);
    mallopt(M_MMAP_THRESHOLD, 4 * mebibyte);
    mallopt(M_TRIM_THRESHOLD, 16 * mebibyte);
}

bool isIgnored(int signal) {
    struct sigaction present {};
    return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

std::vector<std::string> environmentNames() {
    std::vector<std::string> names;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        names.emplace_back(text.substr(0, text.find('=')));
    }
    return names;
}

/// Requests the stop when the program is told to end.
class SignalThread {
public:
    /// Before any other thread begins, so that the signals are for this one only.
    SignalThread() {
        // Clients and the speech engine may leave while they are written to.
        std::signal(SIGPIPE, SIG_IGN);
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGTERM);
        sigaddset(&m_signals, SIGINT);
        // A terminal that closes sends this one; whoever started us with nohup wants it ignored.
        if (!isIgnored(SIGHUP)) sigaddset(&m_signals, SIGHUP);
        pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
        m_thread = std::thread([this] {
            int signal = 0;
            sigwait(&m_signals, &signal);
            m_stop.request_stop();
        });
    }

    ~SignalThread() {
        pthread_kill(m_thread.native_handle(), SIGTERM);
        m_thread.join();
    }

    SignalThread(const SignalThread&) = delete;
    SignalThread& operator=(const SignalThread&) = delete;

    [[nodiscard]] std::stop_token stop() const { return m_stop.get_token(); }

private:
    sigset_t m_signals{};
    std::stop_source m_stop;
    std::thread m_thread;
};

ExitCode run(const ServerOptions& options) {
    keepMemoryForTheNextRecording();
    allowManyConnections();
    const SignalThread signals;
    JournalLog log("net.quietlark.server", "requests");
    const bool isBench = options.action == ServerOptions::Action::Bench;
    const bool isShared = !isBench && options.audience == Audience::Network;
    const auto announcer = isShared ? std::make_unique<AvahiAnnouncer>(log) : nullptr;
    ServerProgram program(options, &environmentVariable, announcer.get(), log);
    const auto outcome = isBench ? program.bench(signals.stop()) : program.serve(signals.stop());
    if (outcome) return Done;
    std::cerr << "quietlark-server: " << outcome.error() << std::endl;
    return Failed;
}

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    using namespace quietlark;
    const auto options =
        ServerOptions::parse({argv + 1, argv + argc}, &environmentVariable, environmentNames());
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
