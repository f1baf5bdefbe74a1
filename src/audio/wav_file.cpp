#include "audio/wav_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <limits>
#include <string_view>
#include <type_traits>

#include "audio/sample_converter.h"

namespace quietlark {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t riffHeaderBytes = 12;
constexpr std::size_t chunkHeaderBytes = 8;
constexpr std::size_t shortestFormatBytes = 16;
constexpr std::size_t extensibleFormatBytes = 40;
constexpr std::uint32_t smallestUnknownSize = 0x7FFF0000;
constexpr std::uint16_t integerPcm = 1;
constexpr std::uint16_t floatingPoint = 3;
constexpr std::uint16_t extensible = 0xFFFE;
constexpr std::uint32_t lowestRateHz = 8000;
constexpr std::uint32_t highestRateHz = 192000;
constexpr std::uint16_t mostChannels = 64;
constexpr std::size_t framesPerBlock = 4096;

// What follows the format's number in an extensible header when that number means what it does in
// a plain one.
constexpr std::array<std::uint8_t, 14> plainSubformat = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                         0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

template <std::unsigned_integral Number>
Number littleEndian(const std::uint8_t* bytes) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        number = static_cast<Number>(number | Number{bytes[i]} << (8 * i));
    return number;
}

template <std::unsigned_integral Number>
Number littleEndian(Bytes bytes, std::size_t offset) {
    return littleEndian<Number>(bytes.subspan(offset, sizeof(Number)).data());
}

bool isNamed(Bytes bytes, std::size_t offset, std::string_view name) {
    return std::ranges::equal(bytes.subspan(offset, name.size()), name, {},
                              [](std::uint8_t byte) { return static_cast<char>(byte); });
}

// How the samples of an encoding are stored, and what they are between -1 and 1; floating point may
// go beyond.
struct Unsigned8 {
    static constexpr std::size_t bytes = 1;
    static float at(const std::uint8_t* sample) {
        return static_cast<float>(*sample - 128) / 128.0F;
    }
};

struct Signed16 {
    static constexpr std::size_t bytes = 2;
    static std::int16_t number(const std::uint8_t* sample) {
        return static_cast<std::int16_t>(littleEndian<std::uint16_t>(sample));
    }
    static float at(const std::uint8_t* sample) { return number(sample) / 32768.0F; }
};

struct Signed24 {
    static constexpr std::size_t bytes = 3;
    static float at(const std::uint8_t* sample) {
        const auto upper = std::uint32_t{littleEndian<std::uint16_t>(sample + 1)} << 16;
        const auto lower = std::uint32_t{sample[0]} << 8;
        return static_cast<float>(static_cast<std::int32_t>(upper | lower)) / 2147483648.0F;
    }
};

struct Signed32 {
    static constexpr std::size_t bytes = 4;
    static float at(const std::uint8_t* sample) {
        const auto number = static_cast<std::int32_t>(littleEndian<std::uint32_t>(sample));
        return static_cast<float>(number) / 2147483648.0F;
    }
};

struct Float32 {
    static constexpr std::size_t bytes = 4;
    static float at(const std::uint8_t* sample) {
        return std::bit_cast<float>(littleEndian<std::uint32_t>(sample));
    }
};

struct Float64 {
    static constexpr std::size_t bytes = 8;
    static float at(const std::uint8_t* sample) {
        constexpr double largest = std::numeric_limits<float>::max();
        const auto exact = std::bit_cast<double>(littleEndian<std::uint64_t>(sample));
        return static_cast<float>(std::clamp(exact, -largest, largest));
    }
};

template <typename Encoding, typename Count>
void averageOf(Count channels, const std::uint8_t* sample, std::span<float> frames) {
    const float share = 1.0F / static_cast<float>(channels);
    for (float& frame : frames) {
        float sum = 0;
        for (std::size_t i = 0; i < channels; ++i, sample += Encoding::bytes)
            sum += Encoding::at(sample);
        frame = sum * share;
    }
}

/// The average of each frame of `channels` samples.
template <typename Encoding>
void average(std::size_t channels, const std::uint8_t* sample, std::span<float> frames) {
    // The usual numbers are known to the compiler.
    if (channels == 1)
        return averageOf<Encoding>(std::integral_constant<std::size_t, 1>(), sample, frames);
    if (channels == 2)
        return averageOf<Encoding>(std::integral_constant<std::size_t, 2>(), sample, frames);
    averageOf<Encoding>(channels, sample, frames);
}

/// Whether these may be chunks to the end, by the first one's name and size.
bool isChunk(Bytes bytes) {
    if (bytes.size() < chunkHeaderBytes) return false;
    const bool hasName = std::ranges::all_of(
        bytes.first(4), [](std::uint8_t byte) { return byte >= 0x20 && byte < 0x7F; });
    return hasName && littleEndian<std::uint32_t>(bytes, 4) <= bytes.size() - chunkHeaderBytes;
}

/// Whether `rest` is all that the size of a chunk can mean: that size was written before the sound.
bool isUnknownSize(std::uint32_t claimed, Bytes rest) {
    if (claimed > 0) return claimed >= smallestUnknownSize && claimed > rest.size();
    // A recording without sound may be followed by other chunks, which have names.
    return !rest.empty() && !isChunk(rest);
}

tl::unexpected<WavFileError> failure(const char* description) {
    return tl::unexpected(WavFileError{description});
}

}  // namespace

tl::expected<WavFile, WavFileError> WavFile::parse(Bytes bytes) {
    if (bytes.size() < riffHeaderBytes || !isNamed(bytes, 0, "RIFF") || !isNamed(bytes, 8, "WAVE"))
        return failure("This is not a WAV file.");
    std::optional<Format> format;
    Bytes rest = bytes.subspan(riffHeaderBytes);
    while (rest.size() >= chunkHeaderBytes) {
        const bool isFormat = isNamed(rest, 0, "fmt ");
        const bool isData = isNamed(rest, 0, "data");
        const auto claimed = littleEndian<std::uint32_t>(rest, 4);
        rest = rest.subspan(chunkHeaderBytes);
        const bool isUnknown = isData && isUnknownSize(claimed, rest);
        const std::size_t size = isUnknown ? rest.size() : claimed;
        if (size > rest.size()) return failure("The WAV file is cut short.");
        if (isFormat) {
            const auto parsed = parseFormat(rest.first(size));
            if (!parsed) return tl::unexpected(parsed.error());
            format = *parsed;
        } else if (isData) {
            if (!format) return failure("The WAV file does not say how its sound is stored.");
            return WavFile(*format, rest.first(size));
        }
        // Chunks start at even offsets.
        rest = rest.subspan(std::min(size + size % 2, rest.size()));
    }
    return failure("The WAV file has no sound in it.");
}

tl::expected<WavFile::Format, WavFileError> WavFile::parseFormat(Bytes chunk) {
    if (chunk.size() < shortestFormatBytes) return failure("The WAV file's header is broken.");
    auto kind = littleEndian<std::uint16_t>(chunk, 0);
    const auto channels = littleEndian<std::uint16_t>(chunk, 2);
    const auto sampleRateHz = littleEndian<std::uint32_t>(chunk, 4);
    const auto blockAlign = littleEndian<std::uint16_t>(chunk, 12);
    const auto bits = littleEndian<std::uint16_t>(chunk, 14);

    if (kind == extensible && chunk.size() >= extensibleFormatBytes &&
        std::ranges::equal(chunk.subspan(26, plainSubformat.size()), plainSubformat))
        kind = littleEndian<std::uint16_t>(chunk, 24);
    const bool isInteger = kind == integerPcm;
    if (!isInteger && kind != floatingPoint)
        return failure("The WAV file is compressed in a way that cannot be read.");
    if (channels == 0 || channels > mostChannels)
        return failure("The WAV file has an impossible number of channels.");
    if (sampleRateHz < lowestRateHz || sampleRateHz > highestRateHz)
        return failure("The WAV file's sample rate is not between 8 and 192 kHz.");

    const auto encoding = encodingOf(isInteger, bits);
    if (!encoding) return failure("The WAV file's samples are of a size that cannot be read.");
    const auto bytesPerSample = static_cast<std::uint16_t>(bits / 8);
    if (blockAlign != channels * bytesPerSample)
        return failure("The WAV file's header contradicts itself.");
    return Format{*encoding, sampleRateHz, channels, bytesPerSample};
}

std::optional<WavFile::Encoding> WavFile::encodingOf(bool isInteger, std::uint16_t bits) {
    if (isInteger && bits == 8) return Encoding::Unsigned8;
    if (isInteger && bits == 16) return Encoding::Signed16;
    if (isInteger && bits == 24) return Encoding::Signed24;
    if (isInteger && bits == 32) return Encoding::Signed32;
    if (!isInteger && bits == 32) return Encoding::Float32;
    if (!isInteger && bits == 64) return Encoding::Float64;
    return std::nullopt;
}

void WavFile::decode(std::size_t first, std::size_t channels, std::span<float> frames) const {
    const std::uint8_t* const sample = m_data.data() + first * m_format.bytesPerFrame();
    switch (m_format.encoding) {
        case Encoding::Unsigned8:
            return average<Unsigned8>(channels, sample, frames);
        case Encoding::Signed16:
            return average<Signed16>(channels, sample, frames);
        case Encoding::Signed24:
            return average<Signed24>(channels, sample, frames);
        case Encoding::Signed32:
            return average<Signed32>(channels, sample, frames);
        case Encoding::Float32:
            return average<Float32>(channels, sample, frames);
        case Encoding::Float64:
            return average<Float64>(channels, sample, frames);
    }
}

std::vector<float> WavFile::read(std::size_t first, std::size_t count) const {
    first = std::min(first, frames());
    std::vector<float> samples(std::min(count, frames() - first) * channels());
    decode(first, 1, samples);
    return samples;
}

std::vector<std::int16_t> WavFile::samples16() const {
    std::vector<std::int16_t> samples(frames());
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = Signed16::number(m_data.data() + i * Signed16::bytes);
    return samples;
}

std::vector<std::int16_t> WavFile::convertedTo(double rateHz) const {
    // Already what is wanted: there is nothing to filter, and nothing to lose.
    if (rateHz == sampleRateHz() && channels() == 1 && m_format.encoding == Encoding::Signed16)
        return samples16();
    auto converter = SampleConverter::create(sampleRateHz(), 1, rateHz);
    if (!converter) return {};
    std::vector<std::int16_t> samples;
    const double length = static_cast<double>(frames()) * rateHz / sampleRateHz();
    samples.reserve(static_cast<std::size_t>(length) + framesPerBlock);
    const auto append = [&samples](std::span<const std::int16_t> more) {
        samples.insert(samples.end(), more.begin(), more.end());
    };
    std::array<float, framesPerBlock> mono{};
    for (std::size_t first = 0; first < frames(); first += framesPerBlock) {
        const auto block = std::span(mono).first(std::min(framesPerBlock, frames() - first));
        decode(first, channels(), block);
        append(converter->convert(block));
    }
    append(converter->finish());
    return samples;
}

}  // namespace quietlark
