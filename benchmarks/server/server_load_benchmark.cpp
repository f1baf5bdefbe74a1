// server_load_benchmark [REQUESTS]: sends that many requests (10,000) of every kind from 32 clients
// to the server program, kills its engine in the middle, and prints the server's memory after each
// thousand. Fails when an answer was wrong, or more was lost than the killed engine held.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <QCoreApplication>

#include "server/server_load.h"
#include "server/whisper_server.h"

using namespace quietlark;

namespace {

constexpr int perRound = 1000;

struct Outcome {
    int lost = 0;
    int kills = 0;
    bool isRight = true;
};

void runRound(WhisperServer& server, int first, bool killsEngine, Outcome& outcome) {
    std::thread killer([&] {
        const pid_t engine = killsEngine ? server.engineId() : 0;
        if (engine > 0) outcome.kills += kill(engine, SIGKILL) == 0 ? 1 : 0;
    });
    const auto result = ServerLoad(server.port()).run(first, perRound);
    killer.join();
    outcome.lost += result.lost;
    outcome.isRight = outcome.isRight && result.answers + result.lost == perRound;
    for (const std::string& answer : result.wrong)
        std::printf("wrong answer to %s\n", answer.c_str());
    std::printf("%6d requests  %7ld KiB\n", first + perRound, server.residentKibibytes());
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int requests = argc > 1 ? std::atoi(argv[1]) : 10'000;
    WhisperServer server("answer 1");
    if (server.start().empty()) return EXIT_FAILURE;
    Outcome outcome;
    for (int first = 0; first < requests; first += perRound)
        runRound(server, first, first / perRound == requests / perRound / 2, outcome);
    std::printf("lost %d, engines killed %d\n", outcome.lost, outcome.kills);
    return outcome.isRight && outcome.lost <= outcome.kills ? EXIT_SUCCESS : EXIT_FAILURE;
}
