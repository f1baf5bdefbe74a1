#include "audio/sample_converter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

namespace quietlark {
namespace {

std::vector<float> tone(double frequencyHz, double amplitude, double rateHz, std::size_t frames) {
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[i] =
            float(amplitude * std::sin(2 * std::numbers::pi * frequencyHz * double(i) / rateHz));
    return samples;
}

/// Converts a whole stream in buffers, and ends it.
std::vector<std::int16_t> convertAll(SampleConverter& converter, std::span<const float> samples,
                                     std::size_t bufferSamples = 4096) {
    std::vector<std::int16_t> result;
    const auto append = [&](auto more) { result.insert(result.end(), more.begin(), more.end()); };
    for (; !samples.empty(); samples = samples.subspan(std::min(bufferSamples, samples.size())))
        append(converter.convert(samples.first(std::min(bufferSamples, samples.size()))));
    append(converter.finish());
    return result;
}

std::vector<std::int16_t> convertAll(double inputRateHz, std::span<const float> mono) {
    auto converter = SampleConverter::create(inputRateHz, 1, 16000);
    return convertAll(converter.value(), mono);
}

/// The largest distance between a conversion to 16 kHz and the tone that it should be, away from
/// the ends.
double worstError(std::span<const std::int16_t> converted, double frequencyHz, double amplitude) {
    double worst = 0;
    for (std::size_t i = 1000; i + 1000 < converted.size(); ++i) {
        const double expected =
            32768 * amplitude * std::sin(2 * std::numbers::pi * frequencyHz * double(i) / 16000);
        worst = std::max(worst, std::abs(converted[i] - expected));
    }
    return worst;
}

TEST(SampleConverter, TheCapacityCoversTheRatioAndTheHeadroom) {
    EXPECT_EQ(SampleConverter::outputCapacity(48000, 16000, 4096), 2389u);
    EXPECT_EQ(SampleConverter::outputCapacity(44100, 16000, 4096), 2510u);
    EXPECT_EQ(SampleConverter::outputCapacity(8000, 16000, 4096), 9216u);
    EXPECT_EQ(SampleConverter::outputCapacity(48000, 16000, 0), 1024u);
}

TEST(SampleConverter, ACapacityBeyond32BitsIsTheLargest) {
    EXPECT_EQ(SampleConverter::outputCapacity(1e-9, 16000, 4096), 0xFFFFFFFFu);
}

TEST(SampleConverter, EveryUsualRateKeepsToneLengthAndPlace) {
    for (const double rate : {8000.0, 11025.0, 16000.0, 22050.0, 24000.0, 32000.0, 44100.0, 48000.0,
                              88200.0, 96000.0, 176400.0, 192000.0}) {
        SCOPED_TRACE(rate);
        const auto converted = convertAll(rate, tone(1000, 0.5, rate, std::size_t(rate)));
        EXPECT_NEAR(double(converted.size()), 16000, 2);
        EXPECT_LT(worstError(converted, 1000, 0.5), 2.0);
    }
}

TEST(SampleConverter, TheSizeOfTheBuffersDoesNotMatter) {
    const auto sound = tone(440, 0.8, 44100, 44100);
    auto inOne = SampleConverter::create(44100, 1, 16000).value();
    auto inMany = SampleConverter::create(44100, 1, 16000).value();
    EXPECT_EQ(convertAll(inOne, sound, sound.size()), convertAll(inMany, sound, 441));
}

TEST(SampleConverter, WhatWouldAliasIsGone) {
    const auto converted = convertAll(48000, tone(10000, 0.9, 48000, 48000));
    EXPECT_LE(*std::max_element(converted.begin() + 1000, converted.end() - 1000), 1);
}

TEST(SampleConverter, TheChannelsAreAveraged) {
    auto converter = SampleConverter::create(16000, 2, 16000).value();
    std::vector<float> stereo;
    for (int i = 0; i < 100; ++i)
        stereo.insert(stereo.end(), {0.5F, -0.25F});
    const auto converted = convertAll(converter, stereo);
    ASSERT_EQ(converted.size(), 100u);
    EXPECT_EQ(converted[50], 4096);
}

TEST(SampleConverter, AHalfFrameAtTheEndIsIgnored) {
    auto converter = SampleConverter::create(16000, 2, 16000).value();
    EXPECT_EQ(converter.convert(std::vector<float>(9, 0.1F)).size(), 4u);
}

TEST(SampleConverter, TooLoudIsClippedAndDoesNotWrapAround) {
    const auto converted = convertAll(16000, std::vector<float>{1.0F, 1.5F, 1e30F, -1.0F, -7.0F});
    EXPECT_EQ(converted, (std::vector<std::int16_t>{32767, 32767, 32767, -32768, -32768}));
}

TEST(SampleConverter, ALoudToneStaysWithinItsSign) {
    const auto converted = convertAll(48000, tone(100, 3.0, 48000, 48000));
    // The first half period of 100 Hz, away from its zeros.
    EXPECT_GT(*std::min_element(converted.begin() + 1610, converted.begin() + 1670), 30000);
}

TEST(SampleConverter, WhatIsNotANumberIsSilenceAndDoesNotSpread) {
    auto sound = tone(1000, 0.5, 48000, 48000);
    sound[20] = std::numeric_limits<float>::quiet_NaN();
    sound[21] = std::numeric_limits<float>::infinity();
    EXPECT_LT(worstError(convertAll(48000, sound), 1000, 0.5), 2.0);
}

TEST(SampleConverter, LittleOfTheNewestSoundIsHeldBack) {
    for (const double rate : {44100.0, 48000.0, 96000.0}) {
        auto converter = SampleConverter::create(rate, 1, 16000).value();
        double heard = 0;
        double converted = 0;
        for (int i = 0; i < 500; ++i) {
            heard += 441 / rate;
            converted += double(converter.convert(std::vector<float>(441)).size()) / 16000;
            EXPECT_LT(heard - converted, 0.011);
        }
    }
}

TEST(SampleConverter, FormatsThatAreNoneHaveNoConverter) {
    EXPECT_FALSE(SampleConverter::create(0, 1, 16000));
    EXPECT_FALSE(SampleConverter::create(-48000, 1, 16000));
    EXPECT_FALSE(SampleConverter::create(std::nan(""), 1, 16000));
    EXPECT_FALSE(SampleConverter::create(48000, 1, 0));
    EXPECT_FALSE(SampleConverter::create(48000, 1, std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(SampleConverter::create(48000, 0, 16000));
    EXPECT_FALSE(SampleConverter::create(48000, 65, 16000));
}

TEST(SampleConverter, AnEmptyBufferYieldsNothing) {
    auto converter = SampleConverter::create(48000, 1, 16000).value();
    EXPECT_TRUE(converter.convert({}).empty());
}

TEST(SampleConverter, AnEmptyBufferDoesNotEndTheStream) {
    auto converter = SampleConverter::create(48000, 1, 16000).value();
    (void)converter.convert({});
    EXPECT_FALSE(converter.convert(std::vector<float>(4096, 0.5F)).empty());
}

}  // namespace
}  // namespace quietlark
