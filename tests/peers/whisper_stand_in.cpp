// Stands in for whisper.cpp's server: the same options, addresses and forms of answer, but what it
// "hears" is how the recording looks, in several segments, the first of which ends within a word.
// The model file says how it behaves, a word and a number per line:
//
//   load MILLISECONDS     takes that long to become ready, and says so meanwhile
//   answer MILLISECONDS   takes that long for a recording
//   exit STATUS           ends at once
//   speed FACTOR          takes as long for a recording as its length divided by this
//   late 1                listens only when it is ready
//   old 1                 listens only when it is ready, and knows no /health
//
// The first sample of a recording says what happens to it: 101 ends the program, 102 makes it hang,
// 103 gives a broken answer, 104 an error, 105 text that is no UTF-8, 106 kills the program.

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
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

enum FirstSample { EndsIt = 101, HangsIt, BrokenAnswer, ErrorAnswer, BrokenText, KillsIt };

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

std::string valueOf(const httplib::Request& request, const char* field) {
    return request.get_file_value(field).content;
}

/// The tokens of a segment, each of which begins with its blank, if with one.
std::string wordsOf(const std::string& text, double start, double end) {
    std::string words;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t next = std::min(text.find(' ', begin + 1), text.size());
        words += std::string(words.empty() ? "" : ",") + R"({"word":")" +
                 text.substr(begin, next - begin) + R"(","start":)" + std::to_string(start) +
                 R"(,"end":)" + std::to_string(end) + "}";
        begin = next;
    }
    return "[" + words + "]";
}

/// In verbose_json, each segment as long as the others.
std::string answerOf(const std::array<std::string, 3>& texts, double seconds) {
    std::string text;
    std::string segments;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const double length = seconds / static_cast<double>(texts.size());
        const double start = length * static_cast<double>(i);
        text += texts[i] + "\\n";
        segments += std::string(i > 0 ? "," : "") + R"({"id":)" + std::to_string(i) +
                    R"(,"text":")" + texts[i] + R"(","start":)" + std::to_string(start) +
                    R"(,"end":)" + std::to_string(start + length) + R"(,"words":)" +
                    wordsOf(texts[i], start, start + length) + "}";
    }
    return R"({"task":"transcribe","language":"english","duration":)" + std::to_string(seconds) +
           R"(,"text":")" + text + R"(","segments":[)" + segments + "]}";
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
        if (isOld || m_behaviour["late"] > 0) std::this_thread::sleep_until(ready);
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
        const std::string file = valueOf(request, "file");
        const auto wav = quietlark::WavFile::parse(
            {reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
        if (!wav) {
            out.status = 400;
            return out.set_content(R"({"error":"failed to read audio data"})", "application/json");
        }
        const std::lock_guard lock(m_model);
        std::cerr << "stand-in has a recording";
        for (const char* field : {"split_on_word", "no_language_probabilities", "no_context",
                                  "translate", "prompt", "temperature"})
            std::cerr << " " << field << "=" << valueOf(request, field);
        std::cerr << std::endl;
        const auto samples = wav->convertedTo(wav->sampleRateHz());
        const double seconds = static_cast<double>(samples.size()) / wav->sampleRateHz();
        std::this_thread::sleep_for(time("answer"));
        if (m_behaviour["speed"] > 0)
            std::this_thread::sleep_for(
                std::chrono::duration<double>(seconds / m_behaviour["speed"]));
        const int first = samples.empty() ? 0 : samples.front();
        std::array<std::string, 3> segments{
            " samp", "les=" + std::to_string(samples.size()) + " first=" + std::to_string(first),
            " language=" + valueOf(request, "language")};
        if (first == EndsIt) std::quick_exit(3);
        if (first == KillsIt) std::raise(SIGKILL);
        if (first == HangsIt) pause();
        if (first == BrokenText) segments.back() += "\xe3\x81";
        if (first == ErrorAnswer) out.status = 500;
        if (first == ErrorAnswer || first == BrokenAnswer)
            return out.set_content(R"({"error":"failed to process audio"})", "application/json");
        out.set_content(answerOf(segments, seconds), "application/json");
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
