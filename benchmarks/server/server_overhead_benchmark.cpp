// How long the server takes for a clip of 10 s beside the engine's own time: the whole program with
// the stand-in of whisper.cpp's server as its child, against that stand-in asked itself. The
// yardstick is a client and a server that only pass the same bytes over the same kind of socket.
// Fails when the program adds more than 5 ms to what the stand-in takes for the clip at 16 kHz
// mono, which is all that it ever gets, be the clip of that form or of 48 kHz stereo.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <thread>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <sys/socket.h>
#include <unistd.h>

#include "audio/wav.h"
#include "fakes/fake_log.h"
#include "server/engine_supervisor.h"
#include "server/raw_http_client.h"
#include "server/stand_in_server.h"

using namespace quietlark;

namespace {

constexpr int rounds = 200;
constexpr int seconds = 10;

constexpr double mostMilliseconds = 5;
/// So that the stand-in has the same to do.
constexpr auto asTheServerAsks =
    "--B\r\nContent-Disposition: form-data; name=\"response_format\"\r\n\r\nverbose_json\r\n";

std::string clip(std::uint32_t rateHz, std::uint16_t channels, std::string_view fields = "") {
    std::vector<std::int16_t> samples(std::size_t{rateHz} * seconds * channels);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(8000 * std::sin(static_cast<double>(i) * 0.05));
    const auto wav = WAV::encode(samples, rateHz, channels);
    return formOf({reinterpret_cast<const char*>(wav.data()), wav.size()}, fields);
}

double report(const char* what, const std::function<void()>& exchange) {
    std::array<double, rounds> milliseconds{};
    for (double& taken : milliseconds) {
        const auto start = std::chrono::steady_clock::now();
        exchange();
        taken = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                    .count();
    }
    std::ranges::sort(milliseconds);
    std::printf("%-44s median %6.2f ms   95 %% %6.2f ms\n", what, milliseconds[rounds / 2],
                milliseconds[rounds * 95 / 100]);
    return milliseconds[rounds / 2];
}

/// A connection for each upload: the stand-in ends those that ask often.
double measure(const char* what, int port, const std::string& upload) {
    return report(what, [&] {
        if (RawHttpClient(port).ask(upload).status != 200) std::abort();
    });
}

/// The bytes there and a short answer back, without a thought.
void measureSocket(const std::string& upload) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) std::abort();
    std::thread echo([&] {
        std::array<char, 16384> bytes{};
        std::size_t received = 0;
        ssize_t count = 0;
        while ((count = read(ends[1], bytes.data(), bytes.size())) > 0) {
            received += static_cast<std::size_t>(count);
            if (received % upload.size() == 0 && write(ends[1], "x", 1) != 1) return;
        }
    });
    report("yardstick: a socket, 16 kHz mono", [&] {
        std::string_view rest = upload;
        while (!rest.empty())
            rest.remove_prefix(static_cast<std::size_t>(write(ends[0], rest.data(), rest.size())));
        char answer = 0;
        if (read(ends[0], &answer, 1) != 1) std::abort();
    });
    close(ends[0]);
    echo.join();
    close(ends[1]);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::signal(SIGPIPE, SIG_IGN);
    measureSocket(postOf("/inference", clip(16000, 1)));

    FakeLog log;
    const QTemporaryDir folder;
    const std::string model = folder.filePath(QStringLiteral("model")).toStdString();
    std::ofstream(model).flush();
    EngineSupervisor standIn(
        {.path = QUIETLARK_WHISPER_STAND_IN, .arguments = {"--model", model}}, {}, [](bool) {},
        log);
    const auto child = standIn.child(std::chrono::steady_clock::now() + std::chrono::minutes(1));
    if (!child) return EXIT_FAILURE;
    const double direct =
        measure("the stand-in of whisper.cpp, asked itself", child->address.port,
                postOf(child->address.path + "/inference", clip(16000, 1, asTheServerAsks)));

    StandInServer server("");
    if (server.start().empty()) return EXIT_FAILURE;
    const double mono = measure("quietlark-server before it, 16 kHz mono", server.port(),
                                postOf("/inference", clip(16000, 1)));
    const double stereo = measure("quietlark-server before it, 48 kHz stereo", server.port(),
                                  postOf("/inference", clip(48000, 2)));
    std::printf("quietlark-server adds %.2f ms, %.2f ms to 48 kHz stereo\n", mono - direct,
                stereo - direct);
    return std::max(mono, stereo) - direct <= mostMilliseconds ? EXIT_SUCCESS : EXIT_FAILURE;
}
