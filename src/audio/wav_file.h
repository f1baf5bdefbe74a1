#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <tl/expected.hpp>

namespace quietlark {

/// Why a file cannot be read as WAV.
struct WavFileError {
    std::string description;  ///< one sentence for the user
};

/// The sound in a WAV file from anywhere: integer PCM of 8, 16, 24 or 32 bits or floating point of
/// 32 or 64, 1 to 64 channels, 8 to 192 kHz. A view of the file's bytes, which must outlive it. Any
/// thread.
class WavFile {
public:
    /// Finds format and sound; nothing the file says about itself is believed beyond its bytes. A
    /// data size of 0x7FFF0000 or more that is beyond the file, or of 0 with nothing but bytes
    /// after it, is written by programs that cannot seek back (arecord, sox, ffmpeg), and means up
    /// to the end.
    [[nodiscard]] static tl::expected<WavFile, WavFileError> parse(
        std::span<const std::uint8_t> bytes);

    [[nodiscard]] std::uint32_t sampleRateHz() const { return m_format.sampleRateHz; }
    [[nodiscard]] std::uint16_t channels() const { return m_format.channels; }
    [[nodiscard]] std::size_t frames() const { return m_data.size() / m_format.bytesPerFrame(); }

    /// Up to `count` frames from `first` on, interleaved; fewer at the end of the file.
    [[nodiscard]] std::vector<float> read(std::size_t first, std::size_t count) const;

    /// All of it as 16-bit samples of one channel at another rate, which must be above 0.
    [[nodiscard]] std::vector<std::int16_t> convertedTo(double rateHz) const;

private:
    enum class Encoding { Unsigned8, Signed16, Signed24, Signed32, Float32, Float64 };

    struct Format {
        Encoding encoding = Encoding::Signed16;
        std::uint32_t sampleRateHz = 0;
        std::uint16_t channels = 0;
        std::uint16_t bytesPerSample = 0;

        [[nodiscard]] std::size_t bytesPerFrame() const {
            return std::size_t{channels} * bytesPerSample;
        }
    };

    [[nodiscard]] std::vector<std::int16_t> samples16() const;
    // Fills `frames` with the averages of so many samples each, from frame `first` of the file on.
    void decode(std::size_t first, std::size_t channels, std::span<float> frames) const;

    WavFile(Format format, std::span<const std::uint8_t> data) : m_format(format), m_data(data) {}
    static tl::expected<Format, WavFileError> parseFormat(std::span<const std::uint8_t> chunk);
    static std::optional<Encoding> encodingOf(bool isInteger, std::uint16_t bits);

    Format m_format;
    std::span<const std::uint8_t> m_data;
};

}  // namespace quietlark
