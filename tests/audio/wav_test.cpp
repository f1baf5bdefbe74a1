#include "audio/wav.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace quietlark {
namespace {

std::uint64_t littleEndian(const WavBytes& bytes, std::size_t offset, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value |= std::uint64_t{bytes.at(offset + i)} << (8 * i);
    return value;
}

std::string text(const WavBytes& bytes, std::size_t offset) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(offset),
            bytes.begin() + static_cast<std::ptrdiff_t>(offset) + 4};
}

// Says how many samples there are without having them: the checks come before any is read.
std::span<const std::int16_t> manySamples(std::size_t count) {
    static const std::int16_t one = 0;
    return {&one, count};
}

TEST(WAV, ZeroSamplesGiveExactlyTheHeader) {
    const WavBytes bytes = WAV::encode({}, 16000, 1);
    EXPECT_EQ(bytes.size(), 44u);
    EXPECT_EQ(littleEndian(bytes, 4, 4), 36u);
    EXPECT_EQ(littleEndian(bytes, 40, 4), 0u);
}

TEST(WAV, ThreeSamplesGiveTheHeaderAndTheirBytes) {
    const std::int16_t samples[] = {1, -1, 32767};
    const WavBytes bytes = WAV::encode(samples, 16000, 1);
    EXPECT_EQ(littleEndian(bytes, 4, 4), 42u);
    EXPECT_EQ(littleEndian(bytes, 28, 4), 32000u);
    EXPECT_EQ(littleEndian(bytes, 32, 2), 2u);
    EXPECT_EQ(littleEndian(bytes, 40, 4), 6u);
    EXPECT_EQ(WavBytes(bytes.begin() + 44, bytes.end()),
              (WavBytes{0x01, 0x00, 0xFF, 0xFF, 0xFF, 0x7F}));
}

TEST(WAV, EveryFieldStandsAtItsOffset) {
    const std::int16_t samples[] = {-32768, 258};
    const WavBytes expected = {'R',  'I',  'F', 'F', 40,   0,    0, 0, 'W', 'A', 'V', 'E',
                               'f',  'm',  't', ' ', 16,   0,    0, 0, 1,   0,   2,   0,
                               0x44, 0xAC, 0,   0,   0x10, 0xB1, 2, 0, 4,   0,   16,  0,
                               'd',  'a',  't', 'a', 4,    0,    0, 0, 0,   128, 2,   1};
    EXPECT_EQ(WAV::encode(samples, 44100, 2), expected);
}

TEST(WAV, TheChunksAreNamed) {
    const WavBytes bytes = WAV::encode({}, 8000, 1);
    EXPECT_EQ(text(bytes, 0), "RIFF");
    EXPECT_EQ(text(bytes, 8), "WAVE");
    EXPECT_EQ(text(bytes, 12), "fmt ");
    EXPECT_EQ(text(bytes, 36), "data");
}

TEST(WAV, TheLargestRateThatFitsIsAccepted) {
    const WavBytes bytes = WAV::encode({}, 0x7FFFFFFF, 1);
    EXPECT_EQ(littleEndian(bytes, 28, 4), 0xFFFFFFFEu);
}

TEST(WAV, TheMostChannelsThatFitAreAccepted) {
    EXPECT_EQ(littleEndian(WAV::encode({}, 1, 0x7FFF), 32, 2), 0xFFFEu);
}

TEST(WAVDeathTest, ARateOfAllChannelsBeyond32BitsStopsTheProgram) {
    EXPECT_DEATH((void)WAV::encode({}, 0xFFFFFFFF, 2), "sample rate of all channels");
}

TEST(WAVDeathTest, AByteRateBeyond32BitsStopsTheProgram) {
    EXPECT_DEATH((void)WAV::encode({}, 0x80000000, 1), "byte rate");
}

TEST(WAVDeathTest, ABlockAlignBeyond16BitsStopsTheProgram) {
    EXPECT_DEATH((void)WAV::encode({}, 1, 0x8000), "block align");
}

TEST(WAVDeathTest, AChunkSizeBeyond32BitsStopsTheProgram) {
    EXPECT_DEATH((void)WAV::encode(manySamples(0x7FFFFFEE), 16000, 1), "chunk size");
}

}  // namespace
}  // namespace quietlark
