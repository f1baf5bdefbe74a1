#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

struct soxr;

namespace quietlark {

/// Turns a stream of interleaved float samples of any rate and channels into 16-bit samples of one
/// channel at another rate. Keeps the filter's history from one buffer to the next. Use it on one
/// thread at a time.
class SampleConverter {
public:
    /// Absent when there are no such formats: the rates must be finite and above 0, with at least
    /// one channel and at most 64.
    [[nodiscard]] static std::optional<SampleConverter> create(double inputRateHz,
                                                               std::uint32_t inputChannels,
                                                               double outputRateHz);

    /// How many frames one buffer may yield: the ratio of the rates times `inputFrames`, and 1024
    /// to cover rounding and the filter's delay, truncated.
    [[nodiscard]] static std::uint32_t outputCapacity(double inputRateHz, double outputRateHz,
                                                      std::size_t inputFrames);

    /// The next buffer of the stream: the average of the channels, converted; what exceeds -1 to 1
    /// is clipped, what is not a number is silence. Yields what is ready, valid until the next
    /// call, at most outputCapacity() samples; the newest few milliseconds follow with the next
    /// buffer.
    [[nodiscard]] std::span<const std::int16_t> convert(std::span<const float> interleaved);

    /// Ends the stream and yields all that is left of it, valid until the next call. Nothing may be
    /// converted afterwards.
    [[nodiscard]] std::span<const std::int16_t> finish();

private:
    struct Deleter {
        void operator()(soxr* resampler) const;
    };

    SampleConverter(soxr* resampler, double inputRateHz, std::uint32_t inputChannels,
                    double outputRateHz);
    // Appends what comes out to m_output and answers how much it was; no `mono` ends the stream.
    std::size_t resample(const float* mono, std::size_t frames, std::size_t capacity);

    std::unique_ptr<soxr, Deleter> m_resampler;
    double m_inputRateHz;
    std::uint32_t m_inputChannels;
    double m_outputRateHz;
    std::vector<float> m_mono;
    std::vector<float> m_resampled;
    std::vector<std::int16_t> m_output;
};

}  // namespace quietlark
