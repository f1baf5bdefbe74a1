#include "audio/wav_file.h"

#include <bit>
#include <random>

#include <gtest/gtest.h>

#include "audio/wav.h"

namespace quietlark {
namespace {

/// Puts a file together field by field, right or wrong.
class FileWriter {
public:
    FileWriter& number(std::uint64_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        return *this;
    }
    FileWriter& zeros(std::size_t count) {
        bytes.resize(bytes.size() + count);
        return *this;
    }
    FileWriter& text(std::string_view name) {
        bytes.insert(bytes.end(), name.begin(), name.end());
        return *this;
    }
    FileWriter& riff() { return text("RIFF").number(0, 4).text("WAVE"); }
    FileWriter& format(unsigned kind, unsigned channels, unsigned rateHz, unsigned bits) {
        return text("fmt ").number(16, 4).formatFields(kind, channels, rateHz, bits);
    }
    FileWriter& extensibleFormat(unsigned subformat, unsigned channels, unsigned rateHz,
                                 unsigned bits) {
        text("fmt ").number(40, 4).formatFields(0xFFFE, channels, rateHz, bits);
        number(22, 2).number(bits, 2).number(0, 4).number(subformat, 4);
        return number(0x00100000, 4).number(0xAA000080, 4).number(0x719B3800, 4);
    }
    FileWriter& data(std::initializer_list<std::uint8_t> sound) {
        text("data").number(sound.size(), 4);
        bytes.insert(bytes.end(), sound);
        return *this;
    }

    WavBytes bytes;

private:
    FileWriter& formatFields(unsigned kind, unsigned channels, unsigned rateHz, unsigned bits) {
        const unsigned frameBytes = channels * bits / 8;
        number(kind, 2).number(channels, 2).number(rateHz, 4).number(rateHz * frameBytes, 4);
        return number(frameBytes, 2).number(bits, 2);
    }
};

std::vector<float> read(const FileWriter& file) {
    const auto parsed = WavFile::parse(file.bytes);
    if (!parsed) {
        ADD_FAILURE() << parsed.error().description;
        return {};
    }
    return parsed->read(0, parsed->frames());
}

std::string errorOf(const WavBytes& bytes) {
    const auto parsed = WavFile::parse(bytes);
    return parsed ? "none" : parsed.error().description;
}

std::string errorOf(const FileWriter& file) {
    return errorOf(file.bytes);
}

TEST(WavFile, WhatTheWriterWroteIsReadBack) {
    const std::vector<std::int16_t> samples = {0, 1, -1, 32767, -32768, 1234};
    const WavBytes bytes = WAV::encode(samples, 16000, 1);
    const auto file = WavFile::parse(bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->sampleRateHz(), 16000u);
    EXPECT_EQ(file->channels(), 1);
    EXPECT_EQ(file->frames(), 6u);
    EXPECT_EQ(file->convertedTo(16000), samples);
}

TEST(WavFile, EightBitSamplesAreUnsigned) {
    EXPECT_EQ(read(FileWriter().riff().format(1, 1, 8000, 8).data({0, 128, 192})),
              (std::vector<float>{-1, 0, 0.5F}));
}

TEST(WavFile, SixteenBitSamplesAreSigned) {
    EXPECT_EQ(read(FileWriter().riff().format(1, 1, 8000, 16).data({0, 0x80, 0, 0x40})),
              (std::vector<float>{-1, 0.5F}));
}

TEST(WavFile, TwentyFourBitSamplesAreSigned) {
    EXPECT_EQ(read(FileWriter()
                       .riff()
                       .format(1, 1, 8000, 24)
                       .data({0, 0, 0x80, 0, 0, 0x40, 0xFF, 0xFF, 0xFF})),
              (std::vector<float>{-1, 0.5F, -1.0F / 8388608}));
}

TEST(WavFile, ThirtyTwoBitSamplesAreSigned) {
    EXPECT_EQ(read(FileWriter().riff().format(1, 1, 8000, 32).data({0, 0, 0, 0x80, 0, 0, 0, 0x40})),
              (std::vector<float>{-1, 0.5F}));
}

TEST(WavFile, FloatingPointSamplesAreReadAsTheyAre) {
    EXPECT_EQ(read(FileWriter().riff().format(3, 1, 8000, 32).data({0, 0, 0xC0, 0xBF})),
              (std::vector<float>{-1.5F}));
    EXPECT_EQ(read(FileWriter().riff().format(3, 1, 8000, 64).data({0, 0, 0, 0, 0, 0, 0xE0, 0x3F})),
              (std::vector<float>{0.5F}));
}

TEST(WavFile, AHugeNumberOf64BitsIsStillANumber) {
    auto file = FileWriter().riff().format(3, 1, 8000, 64).text("data").number(8, 4);
    file.number(std::bit_cast<std::uint64_t>(-1e300), 8);
    EXPECT_EQ(read(file), (std::vector<float>{-std::numeric_limits<float>::max()}));
}

TEST(WavFile, AnExtensibleHeaderIsReadAsThePlainOne) {
    EXPECT_EQ(read(FileWriter().riff().extensibleFormat(1, 2, 48000, 16).data({0, 0x40, 0, 0xC0})),
              (std::vector<float>{0.5F, -0.5F}));
    EXPECT_EQ(read(FileWriter().riff().extensibleFormat(3, 1, 48000, 32).data({0, 0, 0, 0x3F})),
              (std::vector<float>{0.5F}));
}

TEST(WavFile, ChunksBeforeTheSoundAreSkippedWithTheirPadding) {
    auto file = FileWriter().riff().text("LIST").number(3, 4).text("abc").number(0, 1);
    file.format(1, 1, 8000, 8).text("fact").number(4, 4).number(0, 4).data({192});
    EXPECT_EQ(read(file), (std::vector<float>{0.5F}));
}

TEST(WavFile, WhatFollowsTheSoundIsIgnored) {
    EXPECT_EQ(read(FileWriter().riff().format(1, 1, 8000, 8).data({192}).text("?LIST")),
              (std::vector<float>{0.5F}));
}

TEST(WavFile, AHalfFrameAtTheEndIsIgnored) {
    EXPECT_EQ(read(FileWriter().riff().format(1, 2, 8000, 8).data({192, 64, 1})),
              (std::vector<float>{0.5F, -0.5F}));
}

TEST(WavFile, AnUnknownDataSizeMeansUpToTheEnd) {
    auto file = FileWriter().riff().format(1, 1, 8000, 8).text("data").number(0xFFFFFFFF, 4);
    EXPECT_EQ(read(file.number(0x40C0, 2)), (std::vector<float>{0.5F, -0.5F}));
}

TEST(WavFile, ADataSizeThatNoProgramKnewYetMeansUpToTheEnd) {
    for (const std::uint32_t size : {0x80000000U, 0x7FFFF000U, 0x7FFF0000U, 0U}) {
        auto file = FileWriter().riff().format(1, 1, 8000, 8).text("data").number(size, 4);
        EXPECT_EQ(read(file.number(0x40C0, 2)), (std::vector<float>{0.5F, -0.5F})) << size;
    }
    auto file = FileWriter().riff().format(1, 1, 8000, 8).text("data").number(0x7FFEFFFF, 4);
    EXPECT_EQ(errorOf(file.number(0, 2)), "The WAV file is cut short.");
}

TEST(WavFile, ARecordingWithoutSoundHasNoneWhateverFollowsIt) {
    const auto silent = [] { return FileWriter().riff().format(1, 1, 8000, 8).data({}); };
    EXPECT_TRUE(read(silent()).empty());
    EXPECT_TRUE(read(silent().text("LIST").number(4, 4).text("INFO")).empty());
}

TEST(WavFile, ManyChannelsAreAveragedIntoOne) {
    const auto file = FileWriter().riff().format(1, 4, 16000, 8).data({192, 192, 128, 128});
    EXPECT_EQ(WavFile::parse(file.bytes)->convertedTo(16000), (std::vector<std::int16_t>{8192}));
}

TEST(WavFile, EveryEncodingIsAveragedInAnyNumberOfChannels) {
    struct Encoded {
        unsigned kind;
        unsigned bits;
        std::uint64_t half;          // 0.5
        std::uint64_t minusQuarter;  // -0.25
    };
    for (const Encoded& encoded :
         {Encoded{1, 8, 192, 96},
          {1, 16, 0x4000, 0xE000},
          {1, 24, 0x400000, 0xE00000},
          {1, 32, 0x40000000, 0xE0000000},
          {3, 32, std::bit_cast<std::uint32_t>(0.5F), std::bit_cast<std::uint32_t>(-0.25F)},
          {3, 64, std::bit_cast<std::uint64_t>(0.5), std::bit_cast<std::uint64_t>(-0.25)}}) {
        for (const unsigned channels : {1U, 2U, 4U, 64U}) {
            SCOPED_TRACE(testing::Message() << encoded.bits << " bits, " << channels);
            const unsigned width = encoded.bits / 8;
            auto file = FileWriter().riff().format(encoded.kind, channels, 16000, encoded.bits);
            file.text("data").number(2 * channels * width, 4);
            for (unsigned i = 0; i < channels; ++i)
                file.number(encoded.half, width);
            for (unsigned i = 0; i < channels; ++i)
                file.number(i < channels / 2 ? encoded.half : encoded.minusQuarter, width);
            const std::int16_t second = channels == 1 ? -8192 : 4096;
            EXPECT_EQ(WavFile::parse(file.bytes)->convertedTo(16000),
                      (std::vector<std::int16_t>{16384, second}));
        }
    }
}

TEST(WavFile, AnotherRateIsConvertedToTheEnd) {
    const WavBytes bytes = WAV::encode(std::vector<std::int16_t>(44100, 1000), 44100, 1);
    const auto converted = WavFile::parse(bytes)->convertedTo(16000);
    EXPECT_NEAR(double(converted.size()), 16000, 1);
    EXPECT_NEAR(converted[8000], 1000, 1);
    EXPECT_NEAR(converted[15900], 1000, 1);
}

TEST(WavFile, ReadingBeyondTheEndGivesNothing) {
    const WavBytes bytes = WAV::encode(std::vector<std::int16_t>(10), 16000, 1);
    const auto file = WavFile::parse(bytes);
    EXPECT_EQ(file->read(8, 100).size(), 2u);
    EXPECT_TRUE(file->read(std::size_t(-1), std::size_t(-1)).empty());
}

TEST(WavFile, SoundOfNoLengthIsEmpty) {
    const WavBytes bytes = WAV::encode({}, 16000, 1);
    EXPECT_EQ(WavFile::parse(bytes)->frames(), 0u);
    EXPECT_TRUE(WavFile::parse(bytes)->convertedTo(16000).empty());
}

TEST(WavFile, OtherFilesAreNotWav) {
    EXPECT_EQ(errorOf(WavBytes{}), "This is not a WAV file.");
    EXPECT_EQ(errorOf(FileWriter().text("RIFF")), "This is not a WAV file.");
    EXPECT_EQ(errorOf(FileWriter().text("RIFF").number(4, 4).text("AVI ")),
              "This is not a WAV file.");
    EXPECT_EQ(errorOf(FileWriter().text("ID3").zeros(60)), "This is not a WAV file.");
}

TEST(WavFile, MoreSoundClaimedThanThereIsMeansCutShort) {
    auto file = FileWriter().riff().format(1, 1, 8000, 8).text("data");
    EXPECT_EQ(errorOf(file.number(3, 4).number(0, 2)), "The WAV file is cut short.");
}

TEST(WavFile, AHugeChunkMeansCutShort) {
    EXPECT_EQ(errorOf(FileWriter().riff().text("LIST").number(0xFFFFFFFF, 4).zeros(60)),
              "The WAV file is cut short.");
}

TEST(WavFile, SoundWithoutAFormatCannotBeRead) {
    EXPECT_EQ(errorOf(FileWriter().riff().data({1, 2})),
              "The WAV file does not say how its sound is stored.");
}

TEST(WavFile, AFileThatEndsBeforeTheSoundHasNone) {
    EXPECT_EQ(errorOf(FileWriter().riff()), "The WAV file has no sound in it.");
    EXPECT_EQ(errorOf(FileWriter().riff().format(1, 1, 8000, 8)),
              "The WAV file has no sound in it.");
}

TEST(WavFile, AShortFormatChunkIsBroken) {
    EXPECT_EQ(errorOf(FileWriter().riff().text("fmt ").number(4, 4).number(1, 4).data({1})),
              "The WAV file's header is broken.");
}

TEST(WavFile, CompressedSoundCannotBeRead) {
    const std::string error = "The WAV file is compressed in a way that cannot be read.";
    EXPECT_EQ(errorOf(FileWriter().riff().format(85, 2, 44100, 16).data({0})), error);
    EXPECT_EQ(errorOf(FileWriter().riff().extensibleFormat(85, 2, 44100, 16).data({0})), error);
    EXPECT_EQ(errorOf(FileWriter().riff().format(0xFFFE, 2, 44100, 16).data({0})), error);
}

TEST(WavFile, ImpossibleFormatsAreRefused) {
    const auto errorOfFormat = [](unsigned kind, unsigned channels, unsigned rate, unsigned bits) {
        return errorOf(FileWriter().riff().format(kind, channels, rate, bits).data({0}));
    };
    const std::string channels = "The WAV file has an impossible number of channels.";
    EXPECT_EQ(errorOfFormat(1, 0, 44100, 16), channels);
    EXPECT_EQ(errorOfFormat(1, 65535, 44100, 8), channels);
    const std::string rate = "The WAV file's sample rate is not between 8 and 192 kHz.";
    EXPECT_EQ(errorOfFormat(1, 1, 0, 16), rate);
    EXPECT_EQ(errorOfFormat(1, 1, 0xFFFFFFFF, 16), rate);
    const std::string size = "The WAV file's samples are of a size that cannot be read.";
    EXPECT_EQ(errorOfFormat(1, 1, 8000, 0), size);
    EXPECT_EQ(errorOfFormat(1, 1, 8000, 12), size);
    EXPECT_EQ(errorOfFormat(3, 1, 8000, 16), size);
}

TEST(WavFile, AHeaderThatContradictsItselfIsRefused) {
    auto file = FileWriter().riff().format(1, 2, 8000, 16).data({0, 0, 0, 0});
    file.bytes[32] = 2;
    EXPECT_EQ(errorOf(file), "The WAV file's header contradicts itself.");
}

TEST(WavFile, NoDamageToAFileDoesHarm) {
    const std::vector<FileWriter> files = {
        FileWriter().riff().format(1, 1, 8000, 8).data({1, 2, 3, 4, 5, 6, 7, 8}),
        FileWriter().riff().format(1, 2, 192000, 24).data({1, 2, 3, 4, 5, 6, 7, 8}),
        FileWriter().riff().format(3, 1, 44100, 64).data({1, 2, 3, 4, 5, 6, 7, 8}),
        FileWriter().riff().extensibleFormat(3, 2, 48000, 32).data({1, 2, 3, 4, 5, 6, 7, 8}),
        FileWriter().riff().text("LIST").number(2, 4).number(0, 2).format(1, 1, 8000, 16).data({1}),
    };
    std::mt19937 random(2024);  // the same damage in every run
    const auto below = [&random](std::size_t end) { return random() % end; };
    constexpr std::uint8_t telling[] = {0x00, 0x01, 0x7F, 0x80, 0xFE, 0xFF};
    for (int i = 0; i < 20000; ++i) {
        WavBytes bytes = files[below(files.size())].bytes;
        for (std::size_t changes = 1 + below(4); changes > 0; --changes)
            bytes[below(bytes.size())] = telling[below(std::size(telling))];
        if (below(4) == 0) bytes.resize(below(bytes.size()));
        const auto file = WavFile::parse(bytes);
        if (!file) {
            EXPECT_EQ(file.error().description.back(), '.');
            continue;
        }
        EXPECT_LE(file->frames(), bytes.size());
        EXPECT_LE(file->convertedTo(16000).size(), 2 * bytes.size() + 1);
    }
}

}  // namespace
}  // namespace quietlark
