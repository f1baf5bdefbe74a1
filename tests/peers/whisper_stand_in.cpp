// Stands in for whisper.cpp's server: the same options, addresses and forms of answer, but what it
// "hears" is how the recording looks. The model file says how it behaves, a word and a number per
// line:
//
//   load MILLISECONDS     takes that long to become ready, and says so meanwhile
//   answer MILLISECONDS   takes that long for a recording
//   exit STATUS           ends at once
//   speed FACTOR          takes as long for a recording as its length divided by this
//   old 1                 knows no /health, and listens only when it is ready
//
// The first sample of a recording says what happens to it: 101 ends the program, 102 makes it hang,
// 103 gives a broken answer, 104 an error, 105 text that is no UTF-8.

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <mutex>
#include <thread>

#include <httplib.h>
#include <unistd.h>

#include "audio/wav_file.h"

namespace {

using std::chrono::milliseconds;

enum FirstSample { EndsIt = 101, HangsIt, BrokenAnswer, ErrorAnswer, BrokenText };

std::map<std::string, std::string> optionsFrom(int argc, char** argv) {
    std::map<std::string, std::string> options;
    for (int i = 1; i + 1 < argc; i += 2)
        options[argv[i]] = argv[i + 1];
    return options;
}

std::map<std::string, double> behaviourFrom(const std::string& modelFile) {
    std::map<std::string, double> behaviour;
    std::ifstream file(modelFile);
    std::string word;
    double number = 0;
    while (file >> word >> number)
        behaviour[word] = number;
    return behaviour;
}

class StandIn {
public:
    explicit StandIn(std::map<std::string, double> behaviour) : m_behaviour(std::move(behaviour)) {}

    int run(const std::string& host, int port, const std::string& path) {
        m_server.Post((path + "/inference").c_str(),
                      [this](const auto& request, auto& out) { infer(request, out); });
        m_server.Get((path + "/").c_str(), [](const auto&, auto& out) {
            out.set_content("Whisper.cpp Server", "text/html");
        });
        const auto ready = std::chrono::steady_clock::now() + time("load");
        const bool isOld = m_behaviour["old"] > 0;
        if (isOld) std::this_thread::sleep_until(ready);
        if (!isOld) {
            m_server.Get((path + "/health").c_str(), [ready](const auto&, auto& out) {
                const bool isReady = std::chrono::steady_clock::now() >= ready;
                out.status = isReady ? 200 : 503;
                out.set_content(isReady ? R"({"status":"ok"})" : R"({"status":"loading model"})",
                                "application/json");
            });
        }
        std::cerr << "stand-in is process " << getpid() << std::endl;
        return m_server.listen(host.c_str(), port) ? 0 : 1;
    }

private:
    milliseconds time(const char* what) { return milliseconds(std::lround(m_behaviour[what])); }

    void infer(const httplib::Request& request, httplib::Response& out) {
        const std::string file = request.get_file_value("file").content;
        const auto wav = quietlark::WavFile::parse(
            {reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
        if (!wav) {
            out.status = 400;
            return out.set_content(R"({"error":"failed to read audio data"})", "application/json");
        }
        const std::lock_guard lock(m_model);
        std::cerr << "stand-in has a recording" << std::endl;
        const auto samples = wav->convertedTo(wav->sampleRateHz());
        const double seconds = static_cast<double>(samples.size()) / wav->sampleRateHz();
        std::this_thread::sleep_for(time("answer"));
        if (m_behaviour["speed"] > 0)
            std::this_thread::sleep_for(
                std::chrono::duration<double>(seconds / m_behaviour["speed"]));
        const int first = samples.empty() ? 0 : samples.front();
        std::string text = " samples=" + std::to_string(samples.size()) +
                           " first=" + std::to_string(first) +
                           " language=" + request.get_file_value("language").content;
        if (first == EndsIt) std::quick_exit(3);
        if (first == HangsIt) pause();
        if (first == BrokenText) text += "\xe3\x81";
        if (first == ErrorAnswer) out.status = 500;
        if (first == ErrorAnswer || first == BrokenAnswer)
            return out.set_content(R"({"error":"failed to process audio"})", "application/json");
        out.set_content(R"({"task":"transcribe","language":"english","duration":)" +
                            std::to_string(seconds) + R"(,"text":")" + text +
                            R"(","segments":[{"id":0,"text":")" + text + R"(","start":0.0,"end":)" +
                            std::to_string(seconds) + "}]}",
                        "application/json");
    }

    std::map<std::string, double> m_behaviour;
    std::mutex m_model;
    httplib::Server m_server;
};

}  // namespace

int main(int argc, char** argv) {
    auto options = optionsFrom(argc, argv);
    auto behaviour = behaviourFrom(options["--model"]);
    if (const auto found = behaviour.find("exit"); found != behaviour.end())
        return static_cast<int>(found->second);
    return StandIn(std::move(behaviour))
        .run(options["--host"], std::stoi(options["--port"]), options["--request-path"]);
}
