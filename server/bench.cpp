#include "server/bench.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

#include "audio/wav_file.h"

namespace quietlark {
namespace {

constexpr std::size_t runs = 3;

std::string line(const char* key, double number) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s=%.2f\n", key, number);
    return text.data();
}

}  // namespace

tl::expected<std::string, std::string> benchReport(SpeechEngine& engine, const std::string& wavFile,
                                                   const std::string& language) {
    std::ifstream file(wavFile, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) return tl::unexpected("Cannot read " + wavFile + ".");
    const auto wav = WavFile::parse(bytes);
    if (!wav) return tl::unexpected(wav.error().description);
    const auto samples = wav->convertedTo(SpeechEngine::sampleRateHz);
    const double audioSeconds = static_cast<double>(samples.size()) / SpeechEngine::sampleRateHz;
    if (samples.empty()) return tl::unexpected("There is no sound in " + wavFile + ".");

    std::array<double, runs> elapsed{};
    for (double& seconds : elapsed) {
        const auto start = std::chrono::steady_clock::now();
        if (!engine.transcribe({.samples = samples, .language = language}))
            return tl::unexpected(std::string("The recording could not be transcribed."));
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    std::ranges::sort(elapsed);
    const double median = elapsed[runs / 2];
    return "model=" + engine.modelId() + "\n" + line("audioSeconds", audioSeconds) +
           line("elapsedSeconds", median) + line("rtf", audioSeconds / median);
}

}  // namespace quietlark
