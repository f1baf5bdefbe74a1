#include "server/whisper_engine.h"

#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// What the stand-in does with recordings that begin so.
constexpr std::int16_t endsIt = 101;
constexpr std::int16_t hangsIt = 102;
constexpr std::int16_t brokenAnswer = 103;
constexpr std::int16_t errorAnswer = 104;
constexpr std::int16_t brokenText = 105;

/// What a model of whisper.cpp begins with: its format and the size of its vocabulary, of which
/// this is the lowest byte.
std::string headOf(const std::string& lowestByte) {
    return "lmgg" + lowestByte + std::string("\xca\0\0 ", 4);
}

/// The engine with the stand-in as its child.
class WhisperEngineTest : public testing::Test {
protected:
    WhisperEngineTest() { std::signal(SIGPIPE, SIG_IGN); }

    void start(const std::string& behaviour, EngineSupervisor::Times times = quick()) {
        std::ofstream(m_model) << behaviour;
        m_engine = std::make_unique<WhisperEngine>(
            WhisperEngine::Settings{.program = QUIETLARK_WHISPER_STAND_IN,
                                    .modelFile = m_model,
                                    .onReadyChange = [this](bool isReady) { m_lost += !isReady; },
                                    .times = times},
            m_log);
    }

    static EngineSupervisor::Times quick() {
        return {.firstPause = milliseconds(10), .longestPause = milliseconds(100)};
    }

    /// The text of a recording of `length` samples that begins with `first`.
    tl::expected<std::string, EngineError> textOf(
        std::int16_t first, std::size_t length = 32000, std::string_view language = "",
        std::chrono::steady_clock::duration limit = seconds(60)) {
        std::vector<std::int16_t> samples(length);
        samples.front() = first;
        const auto transcript =
            m_engine->transcribe({.samples = samples,
                                  .language = language,
                                  .deadline = std::chrono::steady_clock::now() + limit});
        if (!transcript) return tl::unexpected(transcript.error());
        return transcript->text;
    }

    /// The process that was started last, as it says itself.
    pid_t childId() const {
        const std::string text = "whisper.cpp: stand-in is process ";
        pid_t id = 0;
        for (const auto& line : m_log.lines())
            if (line.text.starts_with(text)) id = std::stoi(line.text.substr(text.size()));
        return id;
    }

    bool recovers() {
        return waitUntil([this] { return textOf(7).has_value(); });
    }

    QTemporaryDir m_folder;
    const std::string m_model = m_folder.filePath(QStringLiteral("ggml-test.bin")).toStdString();
    FakeLog m_log;
    std::atomic<int> m_lost = 0;
    std::unique_ptr<WhisperEngine> m_engine;
};

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

TEST_F(WhisperEngineTest, WhoCannotWaitForTheStartIsTold) {
    start("load 100000");
    EXPECT_EQ(textOf(7, 32000, "", milliseconds(50)).error(), EngineError::Unavailable);
}

TEST_F(WhisperEngineTest, AProgramThatFailsAtEveryStartIsGivenUp) {
    start("exit 1");
    EXPECT_EQ(textOf(7).error(), EngineError::Unavailable);
    EXPECT_TRUE(m_log.contains("exited with status 1"));
}

TEST_F(WhisperEngineTest, AProgramThatWasReadyAndFailsEverSinceHoldsNobodyUpUntilItRecovers) {
    start("");
    EXPECT_TRUE(textOf(7));
    ASSERT_TRUE(waitUntil([this] { return childId() > 0; }));
    std::ofstream(m_model) << "exit 1";
    kill(childId(), SIGKILL);
    ASSERT_TRUE(waitUntil([this] { return m_log.contains("exited with status 1"); }));
    EXPECT_EQ(textOf(7, 32000, "", std::chrono::hours(1)).error(), EngineError::Unavailable);
    std::ofstream(m_model) << "";
    EXPECT_TRUE(recovers());
}

TEST_F(WhisperEngineTest, ACrashCostsTheRecordingThatItHeldAndNoOther) {
    start("");
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(textOf(endsIt).error(), EngineError::Unavailable);
    EXPECT_EQ(textOf(9), "samples=32000 first=9 language=auto");
    EXPECT_GE(m_lost, 1);
}

TEST_F(WhisperEngineTest, AChildThatIsKilledInTheMiddleComesBack) {
    start("answer 100000");
    std::thread client([this] { EXPECT_EQ(textOf(7).error(), EngineError::Unavailable); });
    ASSERT_TRUE(waitUntil([this] { return m_log.contains("has a recording"); }));
    std::ofstream(m_model) << "answer 0";
    const pid_t child = childId();
    ASSERT_GT(child, 0);
    kill(child, SIGKILL);
    client.join();
    EXPECT_TRUE(textOf(7));
    EXPECT_TRUE(waitUntil([&] { return childId() != child; }));
}

TEST_F(WhisperEngineTest, AFailureOfOneChildIsNoneOfTheNext) {
    start("");
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    ASSERT_TRUE(waitUntil([this] { return childId() > 0; }));
    const pid_t first = childId();
    kill(first, SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return childId() != first && m_engine->isReady(); }));
    const pid_t second = childId();
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(childId(), second);
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

TEST_F(WhisperEngineTest, ARecordingThatNobodyWaitsForCostsNoChild) {
    start("answer 100000");
    const std::vector<std::int16_t> samples(32000);
    const auto transcript = m_engine->transcribe(
        {.samples = samples, .isAbandoned = [this] { return m_log.contains("has a recording"); }});
    EXPECT_EQ(transcript.error(), EngineError::Abandoned);
    EXPECT_EQ(m_lost, 0);
    EXPECT_TRUE(m_engine->isReady());
    EXPECT_EQ(kill(childId(), 0), 0);
}

TEST_F(WhisperEngineTest, AChildThatHangsIsReplacedWhenTheTimeIsOver) {
    start("");
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(textOf(hangsIt, 32000, "", milliseconds(200)).error(), EngineError::TimedOut);
    EXPECT_TRUE(recovers());
}

TEST_F(WhisperEngineTest, AChildThatHangsWhileItHasNothingToDoIsReplaced) {
    auto times = quick();
    times.probeEvery = milliseconds(20);
    times.probe = milliseconds(100);
    start("", times);
    EXPECT_TRUE(textOf(7));
    const pid_t child = childId();
    kill(child, SIGSTOP);
    EXPECT_TRUE(waitUntil([&] { return m_engine->isReady() && childId() != child; }));
    EXPECT_TRUE(m_log.contains("does not answer"));
}

TEST_F(WhisperEngineTest, AChildThatNeverBecomesReadyIsStartedAgain) {
    auto times = quick();
    times.start = milliseconds(100);
    start("load 100000", times);
    ASSERT_TRUE(waitUntil([&] { return m_log.contains("did not become ready"); }));
    std::ofstream(m_model) << "load 0";
    EXPECT_TRUE(waitUntil([&] { return m_engine->isReady(); }));
}

TEST_F(WhisperEngineTest, BrokenAnswersCostNothingElse) {
    start("");
    EXPECT_TRUE(textOf(7));
    const pid_t child = childId();
    EXPECT_EQ(textOf(brokenAnswer).error(), EngineError::Failed);
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    EXPECT_EQ(textOf(brokenText), "samples=32000 first=105 language=auto\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(childId(), child);
}

TEST_F(WhisperEngineTest, AChildThatFailsTwiceInARowIsReplacedAndTheLogSaysWhy) {
    start("");
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    ASSERT_TRUE(waitUntil([this] { return childId() > 0; }));
    const pid_t child = childId();
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    EXPECT_TRUE(textOf(7));
    EXPECT_TRUE(waitUntil([&] { return childId() != child; }));
    EXPECT_TRUE(m_log.contains(R"(whisper.cpp: 500 {"error":"failed to process audio"})"));
}

TEST_F(WhisperEngineTest, ItsOutputIsInTheLog) {
    start("");
    EXPECT_TRUE(textOf(7));
    EXPECT_TRUE(waitUntil([this] { return childId() > 0; }));
}

TEST_F(WhisperEngineTest, StoppingEndsTheChildAndWhatItDoes) {
    start("answer 100000");
    std::thread client([this] { EXPECT_EQ(textOf(7).error(), EngineError::Stopping); });
    ASSERT_TRUE(waitUntil([this] { return m_log.contains("has a recording"); }));
    const pid_t child = childId();
    m_engine->stop();
    client.join();
    EXPECT_EQ(textOf(7).error(), EngineError::Stopping);
    m_engine.reset();
    EXPECT_NE(kill(child, 0), 0);
}

TEST_F(WhisperEngineTest, StoppingEndsAStartToo) {
    start("load 100000");
    std::thread client([this] { EXPECT_EQ(textOf(7).error(), EngineError::Stopping); });
    m_engine->stop();
    client.join();
}

TEST_F(WhisperEngineTest, AProgramThatCannotBeStartedIsNamed) {
    m_engine = std::make_unique<WhisperEngine>(
        WhisperEngine::Settings{
            .program = "/nowhere/whisper-server", .modelFile = m_model, .times = quick()},
        m_log);
    EXPECT_EQ(textOf(7).error(), EngineError::Unavailable);
    EXPECT_TRUE(m_log.contains("/nowhere/whisper-server exited with status 127"));
}

}  // namespace quietlark
