#include "server/speech_segments.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

constexpr std::uint32_t rateHz = 16000;

/// Even loudness, as far as cutting it is concerned.
std::vector<std::int16_t> sound(double seconds) {
    return std::vector<std::int16_t>(static_cast<std::size_t>(seconds * rateHz), 1000);
}

void silence(std::vector<std::int16_t>& samples, double fromSecond, double toSecond) {
    std::fill(samples.begin() + static_cast<long>(fromSecond * rateHz),
              samples.begin() + static_cast<long>(toSecond * rateHz), std::int16_t{0});
}

}  // namespace

TEST(SpeechSegmentsTest, NothingGivesNothing) {
    EXPECT_TRUE(speechSegments({}, rateHz).empty());
}

TEST(SpeechSegmentsTest, UpToTwentySecondsStayWhole) {
    const auto samples = sound(20);
    const auto segments = speechSegments(samples, rateHz);
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].size(), samples.size());
}

TEST(SpeechSegmentsTest, TheCutIsInTheMiddleOfThePause) {
    auto samples = sound(30);
    silence(samples, 14, 14.2);
    const auto segments = speechSegments(samples, rateHz);
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_NEAR(static_cast<double>(segments[0].size()) / rateHz, 14.1, 0.03);
}

TEST(SpeechSegmentsTest, PiecesAreWholeWithoutAGapAndNoneIsTooLongOrShort) {
    for (const double seconds : {20.001, 21.0, 22.5, 40.0, 61.0, 200.0}) {
        const auto samples = sound(seconds);
        const std::int16_t* next = samples.data();
        for (const auto segment : speechSegments(samples, rateHz)) {
            EXPECT_EQ(segment.data(), next);
            EXPECT_LE(segment.size(), 20U * rateHz);
            EXPECT_GE(segment.size(), 2U * rateHz);
            next += segment.size();
        }
        EXPECT_EQ(next, samples.data() + samples.size());
    }
}

}  // namespace quietlark
