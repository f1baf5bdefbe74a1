// How long the server takes for a clip of 10 s beside the engine's own time: with an engine that
// takes none, in the same process, and with the stand-in of whisper.cpp's server as its child. The
// yardstick is a client and a server that only pass the same bytes over the same kind of socket.

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

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "audio/wav.h"
#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/raw_http_client.h"
#include "server/speech_server.h"
#include "server/whisper_engine.h"

using namespace quietlark;

namespace {

constexpr int rounds = 200;
constexpr int seconds = 10;

std::string clip(std::uint32_t rateHz, std::uint16_t channels) {
    std::vector<std::int16_t> samples(std::size_t{rateHz} * seconds * channels);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(8000 * std::sin(static_cast<double>(i) * 0.05));
    const auto wav = WAV::encode(samples, rateHz, channels);
    return postOf("/inference", formOf({reinterpret_cast<const char*>(wav.data()), wav.size()}));
}

void report(const char* what, const std::function<void()>& exchange) {
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
}

/// Uploads over one connection to a server before `engine`.
class Served {
public:
    explicit Served(SpeechEngine& engine) : m_api(engine), m_server(m_api, m_log) {
        if (!m_server.bind("127.0.0.1", 0)) std::abort();
        m_thread = std::thread([this] { m_server.run(); });
    }
    ~Served() {
        m_server.stop();
        m_thread.join();
    }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    void measure(const char* what, const std::string& upload) {
        RawHttpClient client(m_server.port());
        report(what, [&] {
            if (client.ask(upload).status != 200) std::abort();
        });
    }

private:
    FakeLog m_log;
    HttpApi m_api;
    SpeechServer m_server;
    std::thread m_thread;
};

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

int main() {
    std::signal(SIGPIPE, SIG_IGN);
    const std::string plain = clip(16000, 1);
    measureSocket(plain);

    FakeSpeechEngine instant;
    {
        Served served(instant);
        served.measure("an instant engine, 16 kHz mono", plain);
        served.measure("an instant engine, 48 kHz stereo", clip(48000, 2));
    }

    std::array<char, 32> model{"/tmp/quietlark-model.XXXXXX"};
    close(mkstemp(model.data()));
    FakeLog log;
    WhisperEngine whisper({.program = QUIETLARK_WHISPER_STAND_IN, .modelFile = model.data()}, log);
    {
        Served served(whisper);
        served.measure("the stand-in of whisper.cpp, 16 kHz mono", plain);
    }
    unlink(model.data());
}
