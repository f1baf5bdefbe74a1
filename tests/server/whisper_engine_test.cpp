#include "server/whisper_engine_fixture.h"

namespace quietlark {
namespace {

class WhisperEngineTest : public WhisperEngineFixture {};

/// What a model of whisper.cpp begins with: its format and the size of its vocabulary, of which
/// this is the lowest byte.
std::string headOf(const std::string& lowestByte) {
    return "lmgg" + lowestByte + std::string("\xca\0\0 ", 4);
}

}  // namespace

TEST_F(WhisperEngineTest, ARecordingIsTranscribedInItsLanguage) {
    start("");
    EXPECT_EQ(textOf(7, 32000), "samples=32000 first=7 language=auto");
    EXPECT_EQ(textOf(8, 48000, "de-AT"), "samples=48000 first=8 language=de");
    EXPECT_EQ(m_engine->modelId(), "whisper-test");
    EXPECT_TRUE(m_engine->isReady());
    EXPECT_TRUE(m_engine->understands("fr"));
    EXPECT_FALSE(m_engine->understands("xx"));
}

TEST_F(WhisperEngineTest, SegmentsAndLanguageComeAlong) {
    start("");
    const std::vector<std::int16_t> samples(24000);
    const auto transcript = m_engine->transcribe({.samples = samples}).value();
    EXPECT_EQ(transcript.language, "english");
    ASSERT_EQ(transcript.segments.size(), 3U);
    EXPECT_EQ(transcript.segments[2].endSeconds, 1.5);
}

TEST_F(WhisperEngineTest, TheChildIsAskedForWholeWordsAndNoMoreThanItsText) {
    start("");
    EXPECT_TRUE(textOf(7));
    EXPECT_TRUE(waitUntil([this] {
        return m_log.contains(
            "has a recording split_on_word=true no_language_probabilities=true no_context=true "
            "translate=false prompt= temperature=0.00");
    }));
}

TEST_F(WhisperEngineTest, WhatElseARequestAsksForReachesTheChild) {
    start("");
    const std::vector<std::int16_t> samples(32000);
    const auto transcript = m_engine->transcribe(
        {.samples = samples, .prompt = "Quietlark", .temperature = 0.4, .translates = true});
    EXPECT_TRUE(transcript->isTranslation);
    ASSERT_EQ(transcript->words->size(), 3U);
    EXPECT_EQ(transcript->words->front().text, "samples=32000");
    EXPECT_TRUE(waitUntil(
        [this] { return m_log.contains("translate=true prompt=Quietlark temperature=0.40"); }));
}

TEST_F(WhisperEngineTest, AVeryShortRecordingIsFollowedBySilence) {
    start("");
    const std::vector<std::int16_t> samples{7, 0};
    const auto transcript = m_engine->transcribe({.samples = samples}).value();
    EXPECT_EQ(transcript.text, "samples=17600 first=7 language=auto");
    EXPECT_EQ(transcript.segments.back().endSeconds, 2.0 / 16000);
    EXPECT_EQ(m_engine->transcribe({})->text, "");
}

TEST_F(WhisperEngineTest, TheFirstRecordingWaitsForASlowStart) {
    start("load 300");
    EXPECT_FALSE(m_engine->isReady());
    EXPECT_TRUE(textOf(7));
}

TEST_F(WhisperEngineTest, AnOlderVersionWithoutAHealthQuestionIsReadyWhenItAnswers) {
    start("load 100\nold 1");
    EXPECT_TRUE(textOf(7));
}

TEST_F(WhisperEngineTest, AVersionThatListensOnlyWhenItHasLoadedIsWaitedFor) {
    start("load 300\nlate 1");
    EXPECT_TRUE(textOf(7));
    EXPECT_FALSE(m_log.contains("does not answer"));
}

TEST_F(WhisperEngineTest, AModelForEnglishAloneIsAskedForNothingElse) {
    start(headOf("\x98"));
    EXPECT_TRUE(m_engine->understands("English"));
    EXPECT_TRUE(m_engine->understands(""));
    EXPECT_FALSE(m_engine->understands("de"));
    EXPECT_EQ(textOf(7), "samples=32000 first=7 language=en");
}

TEST_F(WhisperEngineTest, CantoneseIsForModelsThatKnowIt) {
    start(headOf("\x99"));
    EXPECT_TRUE(m_engine->understands("de"));
    EXPECT_FALSE(m_engine->understands("yue"));
    start(headOf("\x9a"));
    EXPECT_TRUE(m_engine->understands("yue"));
}

TEST_F(WhisperEngineTest, ItsOutputIsInTheLog) {
    start("");
    EXPECT_TRUE(textOf(7));
    EXPECT_TRUE(waitUntil([this] { return childId() > 0; }));
}

}  // namespace quietlark
