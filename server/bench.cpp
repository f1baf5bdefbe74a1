#include "server/bench.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <vector>

#include "audio/wav_file.h"
#include "server/text_forms.h"

namespace quietlark {
namespace {

constexpr std::size_t runs = 3;

std::string line(const std::string& key, double number, int places = 2) {
    return key + "=" + decimals(number, places) + "\n";
}

/// Up to `mostBytes` of a file, and one more if there are more.
std::optional<std::vector<std::uint8_t>> bytesOf(const std::string& path, std::uint64_t mostBytes) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::uint8_t> bytes(mostBytes + 1);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    // A folder can be opened, and not read.
    if (!file.is_open() || file.bad()) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

}  // namespace

tl::expected<std::string, std::string> benchReport(SpeechEngine& engine, const std::string& wavFile,
                                                   const std::string& language,
                                                   std::uint64_t mostBytes) {
    const auto bytes = bytesOf(wavFile, mostBytes);
    if (!bytes) return tl::unexpected("Cannot read " + wavFile + ".");
    if (bytes->size() > mostBytes)
        return tl::unexpected(wavFile + " is larger than --max-upload lets a recording be.");
    const auto wav = WavFile::parse(*bytes);
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
           line("elapsedSeconds", median, 4) + line("rtf", audioSeconds / median);
}

}  // namespace quietlark
