// server_load_benchmark [REQUESTS]: sends that many requests (10,000) of every kind from 32 clients
// to the server program, one of which kills its engine in the middle, and prints the server's
// memory and open files after each thousand. Fails when an answer was wrong, any other request was
// lost, the engine was not killed, the memory after the last exceeds that after the first thousand
// by more than a tenth, or a file stays open.

#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>

#include "server/server_load.h"
#include "server/stand_in_server.h"
#include "support/wait.h"

using namespace quietlark;

namespace {

constexpr int perRound = 1000;
constexpr double mostGrowth = 1.1;

bool isTrue(bool condition, const char* otherwise) {
    if (!condition) std::printf("%s\n", otherwise);
    return condition;
}

/// Whether all went well. `deadly` is the number of the request that kills the engine.
bool runRound(const WhisperServer& server, int first, int deadly) {
    const auto result = ServerLoad(server.port(), deadly).run(first, perRound);
    for (const std::string& answer : result.wrong)
        std::printf("wrong answer to %s\n", answer.c_str());
    std::printf("%6d requests  %7ld KiB  %4d open files  %d lost\n", first + perRound,
                server.residentKibibytes(), static_cast<int>(server.openFiles()), result.lost);
    std::fflush(stdout);
    return result.answers == perRound;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int requests = argc > 1 ? std::atoi(argv[1]) : 10'000;
    StandInServer server("answer 1");
    if (server.start().empty()) return EXIT_FAILURE;
    const pid_t engine = server.engineId();
    const auto openFiles = server.openFiles();
    bool isRight = true;
    long firstKibibytes = 0;
    for (int first = 0; first < requests; first += perRound) {
        isRight = runRound(server, first, requests / 2) && isRight;
        if (first == 0) firstKibibytes = server.residentKibibytes();
    }
    const auto most = static_cast<double>(firstKibibytes) * mostGrowth;
    const bool isKilled = isTrue(server.engineId() != engine, "The engine was not killed.");
    const bool isFlat = isTrue(static_cast<double>(server.residentKibibytes()) <= most,
                               "The memory has grown by more than a tenth.");
    const bool isClosed =
        isTrue(waitUntil([&] { return server.openFiles() <= openFiles; }), "Files stay open.");
    return isRight && isKilled && isFlat && isClosed ? EXIT_SUCCESS : EXIT_FAILURE;
}
