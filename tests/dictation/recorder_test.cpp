#include "dictation/recorder.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_audio_input.h"

namespace quietlark {
namespace {

constexpr std::size_t headerBytes = 44;

class RecorderTest : public ::testing::Test {
protected:
    std::size_t sampleCount(const std::optional<WavBytes>& recording) {
        return recording ? (recording->size() - headerBytes) / 2 : 0;
    }

    std::vector<std::int16_t> samples(const WavBytes& recording) {
        std::vector<std::int16_t> result((recording.size() - headerBytes) / 2);
        std::memcpy(result.data(), recording.data() + headerBytes, result.size() * 2);
        return result;
    }

    FakeAudioInput input;
    Recorder recorder{16000, input};
};

TEST_F(RecorderTest, StopStraightAfterStartIsAbsent) {
    ASSERT_TRUE(recorder.start());
    EXPECT_EQ(recorder.stop(), std::nullopt);
}

TEST_F(RecorderTest, SoundBetweenStartAndStopBecomesAWavFile) {
    ASSERT_TRUE(recorder.start());
    input.hearTone(48000);
    const auto recording = recorder.stop();
    ASSERT_TRUE(recording);
    EXPECT_NEAR(double(sampleCount(recording)), 16000, 160);
    EXPECT_EQ(*recording, WAV::encode(samples(*recording), 16000, 1));
}

TEST_F(RecorderTest, TheToneKeepsItsLevel) {
    ASSERT_TRUE(recorder.start());
    input.hearTone(48000);
    const auto recorded = samples(*recorder.stop());
    EXPECT_NEAR(*std::ranges::max_element(recorded), 16384, 200);
    EXPECT_NEAR(*std::ranges::min_element(recorded), -16384, 200);
}

TEST_F(RecorderTest, ASecondStartWhileRunningKeepsTheSamplesGatheredSoFar) {
    ASSERT_TRUE(recorder.start());
    input.hearTone(24000);
    ASSERT_TRUE(recorder.start());
    input.hearTone(24000);
    EXPECT_NEAR(double(sampleCount(recorder.stop())), 16000, 160);
}

TEST_F(RecorderTest, IsRunningBetweenStartAndStop) {
    EXPECT_FALSE(recorder.isRunning());
    ASSERT_TRUE(recorder.start());
    EXPECT_TRUE(recorder.isRunning());
    (void)recorder.stop();
    EXPECT_FALSE(recorder.isRunning());
}

TEST_F(RecorderTest, WithoutAMicrophoneStartFailsWithCode1) {
    input.format.channels = 0;
    const auto started = recorder.start();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().domain, QStringLiteral("Recorder"));
    EXPECT_EQ(started.error().code, 1);
    EXPECT_EQ(
        started.error().localizedDescription,
        QStringLiteral("No input audio format available — microphone permission may be denied."));
    EXPECT_FALSE(recorder.isRunning());
}

TEST_F(RecorderTest, AMicrophoneWithoutARateIsNone) {
    for (const double rate : {0.0, -48000.0, std::nan("")}) {
        input.format.sampleRateHz = rate;
        const auto started = recorder.start();
        ASSERT_FALSE(started);
        EXPECT_EQ(started.error().code, 1);
    }
}

TEST_F(RecorderTest, ATargetRateThatIsNoneFailsWithCode2) {
    for (const double rate : {0.0, -16000.0, std::nan(""), 1e12}) {
        Recorder impossible(rate, input);
        const auto started = impossible.start();
        ASSERT_FALSE(started);
        EXPECT_EQ(started.error().code, 2);
        EXPECT_EQ(started.error().localizedDescription,
                  QStringLiteral("Could not build target PCM16 format."));
        EXPECT_FALSE(impossible.isRunning());
    }
}

TEST_F(RecorderTest, FormatsThatCannotBeConvertedFailWithCode3) {
    input.format = {.sampleRateHz = 48000, .channels = 1000};
    const auto started = recorder.start();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().code, 3);
    EXPECT_EQ(started.error().localizedDescription,
              QStringLiteral("Could not build AVAudioConverter from 1000 ch, 48000 Hz, Float32 to "
                             "1 ch, 16000 Hz, Int16"));
    EXPECT_FALSE(recorder.isRunning());
}

TEST_F(RecorderTest, TheMicrophonesOwnErrorIsPassedOnUnchanged) {
    input.startError = AudioInputError{QStringLiteral("The microphone is in use.")};
    const auto started = recorder.start();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().localizedDescription, QStringLiteral("The microphone is in use."));
    EXPECT_NE(started.error().domain, QStringLiteral("Recorder"));
    EXPECT_FALSE(recorder.isRunning());
}

TEST_F(RecorderTest, ARecordingAfterAFailedStartWorks) {
    input.startError = AudioInputError{QStringLiteral("Busy.")};
    ASSERT_FALSE(recorder.start());
    input.startError.reset();
    ASSERT_TRUE(recorder.start());
    input.hearTone(48000);
    EXPECT_NEAR(double(sampleCount(recorder.stop())), 16000, 160);
}

TEST_F(RecorderTest, TheTapWants4096FramesInTheMicrophonesFormat) {
    input.format = {.sampleRateHz = 44100, .channels = 2};
    ASSERT_TRUE(recorder.start());
    EXPECT_EQ(input.bufferFrames(), 4096u);
    EXPECT_EQ(input.tapFormat(), input.format);
}

TEST_F(RecorderTest, ABufferOf4096FramesAt48000HzYieldsAtMost2389) {
    EXPECT_EQ(SampleConverter::outputCapacity(48000, 16000, 4096), 2389u);
    ASSERT_TRUE(recorder.start());
    input.hearTone(4096);
    const auto count = sampleCount(recorder.stop());
    EXPECT_LE(count, 2389u);
    // A third of them, but for the 10 ms at most that the filter still has.
    EXPECT_GE(count, 4096u / 3 - 160u);
}

TEST_F(RecorderTest, ABufferAfterStopIsDropped) {
    ASSERT_TRUE(recorder.start());
    input.hearTone(48000);
    ASSERT_TRUE(recorder.stop());
    input.callFormerTap(std::vector<float>(4096, 0.5F));
    EXPECT_EQ(recorder.stop(), std::nullopt);
}

TEST_F(RecorderTest, WhatTheMicrophoneHandsOverAtTheEndIsPartOfTheRecording) {
    ASSERT_TRUE(recorder.start());
    input.hearTone(4000);
    EXPECT_GT(sampleCount(recorder.stop()), 1100u);
}

TEST_F(RecorderTest, StopWithoutStartIsAbsent) {
    EXPECT_EQ(recorder.stop(), std::nullopt);
}

TEST_F(RecorderTest, TheNextRecordingHoldsNothingOfTheLast) {
    ASSERT_TRUE(recorder.start());
    input.hearTone(48000);
    ASSERT_TRUE(recorder.stop());
    ASSERT_TRUE(recorder.start());
    EXPECT_EQ(recorder.stop(), std::nullopt);
}

TEST_F(RecorderTest, TheMicrophonesFormatMayChangeBetweenRecordings) {
    ASSERT_TRUE(recorder.start());
    (void)recorder.stop();
    input.format = {.sampleRateHz = 44100, .channels = 2};
    ASSERT_TRUE(recorder.start());
    input.hearTone(44100);
    EXPECT_NEAR(double(sampleCount(recorder.stop())), 16000, 170);
}

TEST_F(RecorderTest, TheMicrophoneIsClosedAfterStop) {
    ASSERT_TRUE(recorder.start());
    EXPECT_TRUE(input.isRunning());
    (void)recorder.stop();
    EXPECT_FALSE(input.isRunning());
    EXPECT_FALSE(input.hasTap());
}

TEST(RecorderLifetimeTest, ARecorderThatIsDestroyedWhileRunningLetsGoOfTheMicrophone) {
    FakeAudioInput input;
    auto recorder = std::make_unique<Recorder>(16000, input);
    ASSERT_TRUE(recorder->start());
    recorder.reset();
    EXPECT_FALSE(input.hasTap());
    EXPECT_FALSE(input.isRunning());
}

TEST_F(RecorderTest, SoundMayArriveOnAnotherThreadAtAnyTime) {
    std::atomic<bool> done = false;
    std::thread audioThread([&] {
        const std::vector<float> sound(4096, 0.25F);
        while (!done)
            input.hear(sound);
    });
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(recorder.start());
        EXPECT_TRUE(recorder.isRunning());
        (void)recorder.stop();
    }
    done = true;
    audioThread.join();
    EXPECT_FALSE(recorder.isRunning());
}

}  // namespace
}  // namespace quietlark
