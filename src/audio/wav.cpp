#include "audio/wav.h"

#include <bit>
#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace quietlark {
namespace {

constexpr std::uint32_t headerBytes = 44;
// The chunk size counts what follows its own field.
constexpr std::uint32_t headerBytesAfterChunkSize = 36;
constexpr std::uint32_t formatBytes = 16;
constexpr std::uint16_t integerPcm = 1;
constexpr std::uint16_t bitsPerSample = 16;
constexpr std::uint16_t bytesPerSample = bitsPerSample / 8;

template <std::unsigned_integral Field>
Field checked(std::uint64_t value, const char* field) {
    if (value > std::numeric_limits<Field>::max()) {
        std::fprintf(stderr, "WAV::encode: the %s does not fit its field\n", field);
        std::abort();
    }
    return static_cast<Field>(value);
}

template <std::integral Number>
void appendLittleEndian(WavBytes& bytes, Number number) {
    const auto bits = static_cast<std::make_unsigned_t<Number>>(number);
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        bytes.push_back(static_cast<std::uint8_t>(bits >> (8 * i)));
}

void appendText(WavBytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

void appendSamples(WavBytes& bytes, std::span<const std::int16_t> samples) {
    if constexpr (std::endian::native == std::endian::little) {
        const auto* first = reinterpret_cast<const std::uint8_t*>(samples.data());
        bytes.insert(bytes.end(), first, first + samples.size_bytes());
    } else {
        for (const std::int16_t sample : samples)
            appendLittleEndian(bytes, sample);
    }
}

}  // namespace

WavBytes WAV::encode(std::span<const std::int16_t> int16Samples, std::uint32_t sampleRate,
                     std::uint16_t channels) {
    const auto frameRate =
        checked<std::uint32_t>(std::uint64_t{sampleRate} * channels, "sample rate of all channels");
    const auto byteRate =
        checked<std::uint32_t>(std::uint64_t{frameRate} * bytesPerSample, "byte rate");
    const auto blockAlign =
        checked<std::uint16_t>(std::uint64_t{channels} * bytesPerSample, "block align");
    const auto chunkBytes = checked<std::uint32_t>(
        std::uint64_t{int16Samples.size()} * bytesPerSample + headerBytesAfterChunkSize,
        "chunk size");
    const std::uint32_t dataBytes = chunkBytes - headerBytesAfterChunkSize;

    WavBytes bytes;
    bytes.reserve(std::size_t{headerBytes} + dataBytes);
    appendText(bytes, "RIFF");
    appendLittleEndian(bytes, chunkBytes);
    appendText(bytes, "WAVE");
    appendText(bytes, "fmt ");
    appendLittleEndian(bytes, formatBytes);
    appendLittleEndian(bytes, integerPcm);
    appendLittleEndian(bytes, channels);
    appendLittleEndian(bytes, sampleRate);
    appendLittleEndian(bytes, byteRate);
    appendLittleEndian(bytes, blockAlign);
    appendLittleEndian(bytes, bitsPerSample);
    appendText(bytes, "data");
    appendLittleEndian(bytes, dataBytes);
    appendSamples(bytes, int16Samples);
    return bytes;
}

}  // namespace quietlark
