#include "server/pocketsphinx_engine.h"

#include <gtest/gtest.h>

#include "audio/wav_file.h"
#include "server/self_test.h"
#include "server/speech.h"

namespace quietlark {
namespace {

class PocketSphinxEngineTest : public testing::Test {
protected:
    std::string textOf(const std::vector<std::int16_t>& samples) {
        return m_engine->transcribe({.samples = samples}).value().text;
    }

    std::string textOf(const WavBytes& file) {
        return textOf(WavFile::parse(file)->convertedTo(SpeechEngine::sampleRateHz));
    }

    std::unique_ptr<PocketSphinxEngine> m_engine = PocketSphinxEngine::load().value();
};

const QString coffee = QStringLiteral("i would like to have a cup of coffee");
const QString weather = QStringLiteral("the weather is nice today");
const QString numbers = QStringLiteral("one two three four five");

}  // namespace

TEST_F(PocketSphinxEngineTest, SentencesAreUnderstoodWordForWord) {
    for (const QString& sentence : {coffee, weather, numbers})
        EXPECT_EQ(textOf(speech(sentence)), sentence.toStdString());
}

TEST_F(PocketSphinxEngineTest, EveryKindOfWavFileIsUnderstood) {
    const auto samples = speech(weather);
    EXPECT_EQ(textOf(resampled(samples, 44100, 1)), weather.toStdString());
    EXPECT_EQ(textOf(resampled(samples, 48000, 2)), weather.toStdString());
    EXPECT_EQ(textOf(asUnsigned8(samples)), weather.toStdString());
    EXPECT_EQ(textOf(asFloat32(samples)), weather.toStdString());
}

TEST_F(PocketSphinxEngineTest, WhatWasHeardBeforeChangesNothing) {
    const auto samples = speech(numbers);
    EXPECT_EQ(textOf(samples), numbers.toStdString());
    EXPECT_EQ(textOf(std::vector<std::int16_t>(16000, 12345)),
              textOf(std::vector<std::int16_t>(16000, 12345)));
    EXPECT_EQ(textOf(speech(coffee)), coffee.toStdString());
    EXPECT_EQ(textOf(samples), numbers.toStdString());
}

TEST_F(PocketSphinxEngineTest, SpeechThatBeginsAtOnceIsUnderstood) {
    auto samples = speech(weather);
    const auto isLoud = [](std::int16_t sample) { return sample > 1000 || sample < -1000; };
    samples.erase(samples.begin(), std::find_if(samples.begin(), samples.end(), isLoud));
    EXPECT_EQ(textOf(samples), weather.toStdString());
}

TEST_F(PocketSphinxEngineTest, ARecordingLongerThanOnePieceIsUnderstood) {
    constexpr std::size_t sentenceEvery = 5 * SpeechEngine::sampleRateHz;
    std::vector<std::int16_t> samples;
    for (int i = 1; i <= 5; ++i) {
        const auto sentence = speech(numbers);
        samples.insert(samples.end(), sentence.begin(), sentence.end());
        samples.resize(i * sentenceEvery);
    }
    const std::string once = numbers.toStdString() + " ";
    const std::string expected = once + once + once + once + numbers.toStdString();
    EXPECT_EQ(textOf(samples), expected);
}

TEST_F(PocketSphinxEngineTest, EveryPieceIsASegmentWithItsTimes) {
    auto samples = speech(numbers);
    samples.resize(15 * SpeechEngine::sampleRateHz);
    const auto second = speech(weather);
    samples.insert(samples.end(), second.begin(), second.end());
    samples.resize(25 * SpeechEngine::sampleRateHz);
    const auto transcript = m_engine->transcribe({.samples = samples}).value();
    EXPECT_EQ(transcript.language, "english");
    ASSERT_EQ(transcript.segments.size(), 2U);
    EXPECT_EQ(transcript.segments[0].text, numbers.toStdString());
    EXPECT_EQ(transcript.segments[1].text, weather.toStdString());
    EXPECT_EQ(transcript.segments[0].endSeconds, transcript.segments[1].startSeconds);
    EXPECT_EQ(transcript.segments[1].endSeconds, 25);
}

TEST_F(PocketSphinxEngineTest, ARecordingThatMayTakeNoTimeIsGivenUp) {
    const std::vector<std::int16_t> silence(16000);
    const auto now = std::chrono::steady_clock::now();
    EXPECT_EQ(m_engine->transcribe({.samples = silence, .deadline = now}).error(),
              EngineError::TimedOut);
}

TEST_F(PocketSphinxEngineTest, NextToNothingAndSilenceAreEmptyTexts) {
    for (const std::size_t count : {0, 1, 2, 100, 1600, 16000, 60 * 16000})
        EXPECT_EQ(textOf(std::vector<std::int16_t>(count)), "") << count;
}

TEST_F(PocketSphinxEngineTest, EnglishIsUnderstoodAndNothingElse) {
    for (const char* language : {"", "en", "EN", "en-US", "en_GB", "english", "auto"})
        EXPECT_TRUE(m_engine->understands(language)) << language;
    for (const char* language : {"de", "e", "enm", "fr"})
        EXPECT_FALSE(m_engine->understands(language)) << language;
}

TEST_F(PocketSphinxEngineTest, ItDoesNotTranslate) {
    const auto transcript = m_engine->transcribe({.translates = true});
    EXPECT_EQ(transcript.error(), EngineError::CannotTranslate);
}

TEST_F(PocketSphinxEngineTest, ARecordingThatNobodyWaitsForIsGivenUp) {
    const std::vector<std::int16_t> silence(16000);
    const auto transcript =
        m_engine->transcribe({.samples = silence, .isAbandoned = [] { return true; }});
    EXPECT_EQ(transcript.error(), EngineError::Abandoned);
}

TEST_F(PocketSphinxEngineTest, AStoppedEngineTranscribesNoMore) {
    const std::vector<std::int16_t> silence(16000);
    EXPECT_TRUE(m_engine->isReady());
    m_engine->stop();
    EXPECT_FALSE(m_engine->isReady());
    EXPECT_EQ(m_engine->transcribe({.samples = silence}).error(), EngineError::Stopping);
}

TEST_F(PocketSphinxEngineTest, TheSampleSentenceGivesASpeed) {
    EXPECT_GT(measureSpeed(*m_engine).value(), 0);
}

TEST(PocketSphinxEngineLoadTest, AMissingModelIsNamed) {
    const auto engine = PocketSphinxEngine::load("/nowhere");
    ASSERT_FALSE(engine);
    EXPECT_EQ(engine.error(),
              "The speech model in /nowhere is missing or broken. "
              "Install the package pocketsphinx-en-us.");
}

}  // namespace quietlark
