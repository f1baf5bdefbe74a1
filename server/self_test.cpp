#include "server/self_test.h"

#include <chrono>
#include <span>

#include "audio/wav_file.h"
#include "server/self_test_sample.h"

namespace quietlark {
namespace {

/// A large model takes its time to come from a slow disk.
constexpr std::chrono::minutes longestTime{10};

}  // namespace

tl::expected<double, std::string> measureSpeed(SpeechEngine& engine) {
    const auto wav = WavFile::parse(selfTestSample());
    if (!wav) return tl::unexpected(wav.error().description);
    const auto samples = wav->convertedTo(SpeechEngine::sampleRateHz);
    std::chrono::duration<double> elapsed{};
    for (int run = 1; run <= 2; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const auto transcript =
            engine.transcribe({.samples = samples, .deadline = start + longestTime});
        elapsed = std::chrono::steady_clock::now() - start;
        if (!transcript || transcript->text.empty())
            return tl::unexpected(
                std::string("The speech engine does not understand the sample sentence."));
    }
    return static_cast<double>(wav->frames()) / wav->sampleRateHz() / elapsed.count();
}

}  // namespace quietlark
