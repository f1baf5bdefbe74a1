#include "audio/sample_converter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <soxr.h>

namespace quietlark {
namespace {

constexpr std::uint32_t maxChannels = 64;
constexpr double headroomFrames = 1024;

// The newest sound stays in the resampler until the next buffer pushes it out, so what is in there
// when a recording ends is lost. How much depends on the length of the filter, which the width of
// its transition sets. With these, in parts of half the lower rate, it is 1.5 to 9.2 ms at 48 kHz,
// where soxr's own choice for high quality keeps 6 to 37 ms; speech up to 6.9 kHz stays as it is.
struct Transition {
    double passbandEnd;
    double stopbandBegin;
};
constexpr Transition downward{0.87, 1.16};
constexpr Transition upward{0.80, 1.19};  // soxr wants it symmetrical
constexpr double precisionBits = 16;
constexpr unsigned shortestTransformLog2 = 8;

bool isRate(double rateHz) {
    return std::isfinite(rateHz) && rateHz > 0;
}

float withinBounds(float sample) {
    return std::isfinite(sample) ? std::clamp(sample, -1.0F, 1.0F) : 0.0F;
}

float average(std::span<const float> frame) {
    float sum = 0;
    for (const float sample : frame)
        sum += sample;
    return sum / static_cast<float>(frame.size());
}

std::int16_t toInt16(float sample) {
    const float scaled = std::clamp(sample * 32768.0F, -32768.0F, 32767.0F);
    return static_cast<std::int16_t>(std::lrintf(scaled));
}

}  // namespace

std::optional<SampleConverter> SampleConverter::create(double inputRateHz,
                                                       std::uint32_t inputChannels,
                                                       double outputRateHz) {
    if (!isRate(inputRateHz) || !isRate(outputRateHz)) return std::nullopt;
    if (inputChannels == 0 || inputChannels > maxChannels) return std::nullopt;

    const Transition transition = outputRateHz > inputRateHz ? upward : downward;
    soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    quality.precision = precisionBits;
    quality.passband_end = transition.passbandEnd;
    quality.stopband_begin = transition.stopbandBegin;
    soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
    runtime.log2_min_dft_size = shortestTransformLog2;
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    soxr_error_t error = nullptr;
    soxr_t resampler =
        soxr_create(inputRateHz, outputRateHz, 1, &error, &samples, &quality, &runtime);
    if (error || !resampler) {
        soxr_delete(resampler);
        return std::nullopt;
    }
    return SampleConverter(resampler, inputRateHz, inputChannels, outputRateHz);
}

SampleConverter::SampleConverter(soxr* resampler, double inputRateHz, std::uint32_t inputChannels,
                                 double outputRateHz)
    : m_resampler(resampler),
      m_inputRateHz(inputRateHz),
      m_inputChannels(inputChannels),
      m_outputRateHz(outputRateHz) {}

void SampleConverter::Deleter::operator()(soxr* resampler) const {
    soxr_delete(resampler);
}

std::uint32_t SampleConverter::outputCapacity(double inputRateHz, double outputRateHz,
                                              std::size_t inputFrames) {
    const double frames =
        outputRateHz / inputRateHz * static_cast<double>(inputFrames) + headroomFrames;
    constexpr auto most = std::numeric_limits<std::uint32_t>::max();
    return frames < most ? static_cast<std::uint32_t>(frames) : most;
}

std::span<const std::int16_t> SampleConverter::convert(std::span<const float> interleaved) {
    const std::size_t frames = interleaved.size() / m_inputChannels;
    // To the resampler, nothing would mean the end of the stream.
    if (frames == 0) return {};
    m_mono.resize(frames);
    if (m_inputChannels == 1) {
        std::ranges::transform(interleaved, m_mono.begin(), withinBounds);
    } else {
        for (std::size_t i = 0; i < frames; ++i)
            m_mono[i] =
                withinBounds(average(interleaved.subspan(i * m_inputChannels, m_inputChannels)));
    }
    m_output.clear();
    resample(m_mono.data(), frames, outputCapacity(m_inputRateHz, m_outputRateHz, frames));
    return m_output;
}

std::span<const std::int16_t> SampleConverter::finish() {
    m_output.clear();
    while (resample(nullptr, 0, static_cast<std::size_t>(headroomFrames)) > 0)
        continue;
    return m_output;
}

std::size_t SampleConverter::resample(const float* mono, std::size_t frames, std::size_t capacity) {
    m_resampled.resize(capacity);
    std::size_t resampledFrames = 0;
    // One buffer that cannot be converted is lost, and no more than that.
    if (soxr_process(m_resampler.get(), mono, frames, nullptr, m_resampled.data(), capacity,
                     &resampledFrames))
        return 0;
    const auto resampled = std::span(m_resampled).first(resampledFrames);
    m_output.resize(m_output.size() + resampledFrames);
    std::ranges::transform(resampled, m_output.end() - resampled.size(), toInt16);
    return resampledFrames;
}

}  // namespace quietlark
