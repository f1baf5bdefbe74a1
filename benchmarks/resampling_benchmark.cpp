// Speed and quality of the conversion to 16 kHz, beside soxr converting everything in one call.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <numbers>
#include <vector>

#include <soxr.h>

#include "audio/sample_converter.h"

namespace quietlark {
namespace {

constexpr double targetRateHz = 16000;
constexpr std::size_t bufferFrames = 4096;
using Samples = std::vector<std::int16_t>;
using Conversion = std::function<Samples(double rateHz, std::span<const float> sound)>;

std::vector<float> tone(double frequencyHz, double rateHz, int seconds) {
    std::vector<float> samples(std::size_t(rateHz) * std::size_t(seconds));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = float(
            0.5 * std::sin(2 * std::numbers::pi * std::fmod(frequencyHz * double(i) / rateHz, 1)));
    return samples;
}

Samples convertInBuffers(double rateHz, std::span<const float> sound) {
    auto converter = SampleConverter::create(rateHz, 1, targetRateHz).value();
    Samples result;
    while (!sound.empty()) {
        const auto buffer = sound.first(std::min(bufferFrames, sound.size()));
        const auto converted = converter.convert(buffer);
        result.insert(result.end(), converted.begin(), converted.end());
        sound = sound.subspan(buffer.size());
    }
    return result;
}

Samples convertAtOnce(double rateHz, std::span<const float> sound) {
    Samples result(std::size_t(double(sound.size()) * targetRateHz / rateHz) + 1000);
    const soxr_io_spec_t formats = soxr_io_spec(SOXR_FLOAT32_I, SOXR_INT16_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    std::size_t done = 0;
    soxr_oneshot(rateHz, targetRateHz, 1, sound.data(), sound.size(), nullptr, result.data(),
                 result.size(), &done, &formats, &quality, nullptr);
    result.resize(done);
    return result;
}

/// Power of the samples away from the ends, in dB of full scale, with the best fit of a tone taken
/// out or as they are.
double decibels(const Samples& samples, double frequencyToRemoveHz) {
    const auto inner = std::span(samples).subspan(4000, 16000);
    double withSine = 0;
    double withCosine = 0;
    const double step = 2 * std::numbers::pi * frequencyToRemoveHz / targetRateHz;
    const double half = double(inner.size()) / 2;  // a whole number of periods
    for (std::size_t i = 0; i < inner.size(); ++i) {
        withSine += inner[i] * std::sin(step * double(i)) / half;
        withCosine += inner[i] * std::cos(step * double(i)) / half;
    }
    double power = 0;
    for (std::size_t i = 0; i < inner.size(); ++i) {
        const double removed = frequencyToRemoveHz > 0 ? withSine * std::sin(step * double(i)) +
                                                             withCosine * std::cos(step * double(i))
                                                       : 0;
        power += std::pow((inner[i] - removed) / 32768, 2) / double(inner.size());
    }
    return 10 * std::log10(std::max(power, 1e-20));
}

double timesRealTime(const Conversion& convert, double rateHz) {
    constexpr int seconds = 60;
    const auto sound = tone(1000, rateHz, seconds);
    double best = 0;
    for (int i = 0; i < 7; ++i) {
        const auto before = std::chrono::steady_clock::now();
        (void)convert(rateHz, sound);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - before;
        best = std::max(best, seconds / taken.count());
    }
    return best;
}

/// The longest stretch of the newest sound that has not come out yet.
double mostHeldBackMilliseconds(double rateHz) {
    auto converter = SampleConverter::create(rateHz, 1, targetRateHz).value();
    const std::vector<float> silence(64);
    double in = 0;
    double out = 0;
    double most = 0;
    for (int i = 0; i < 10000; ++i) {
        in += double(silence.size()) / rateHz;
        out += double(converter.convert(silence).size()) / targetRateHz;
        most = std::max(most, in - out);
    }
    return 1000 * most;
}

void printRow(const char* name, const Conversion& convert, double rateHz) {
    const Samples kept = convert(rateHz, tone(1000, rateHz, 2));
    const Samples alias = convert(rateHz, tone(10000, rateHz, 2));
    const double signal = decibels(kept, 0);
    std::printf("%-16s %8.0f %10.0f %10.1f %12.1f\n", name, rateHz, timesRealTime(convert, rateHz),
                signal - decibels(kept, 1000), decibels(alias, 0) - signal);
}

}  // namespace
}  // namespace quietlark

int main() {
    using namespace quietlark;
    std::printf("%-16s %8s %10s %10s %12s\n", "to 16 kHz", "from Hz", "x realtime", "SNR dB",
                "alias dB");
    for (const double rateHz : {48000.0, 44100.0}) {
        printRow("SampleConverter", convertInBuffers, rateHz);
        printRow("soxr_oneshot HQ", convertAtOnce, rateHz);
    }
    for (const double rateHz : {8000.0, 44100.0, 48000.0, 96000.0, 192000.0})
        std::printf("held back from %.0f Hz: at most %.1f ms\n", rateHz,
                    mostHeldBackMilliseconds(rateHz));
}
