#include <csignal>
#include <thread>

#include "server/whisper_engine_fixture.h"

namespace quietlark {
namespace {

using std::chrono::milliseconds;

// What the stand-in does with recordings that begin so.
constexpr std::int16_t endsIt = 101;
constexpr std::int16_t hangsIt = 102;
constexpr std::int16_t brokenAnswer = 103;
constexpr std::int16_t errorAnswer = 104;
constexpr std::int16_t brokenText = 105;

class WhisperEngineFaultTest : public WhisperEngineFixture {};

}  // namespace

TEST_F(WhisperEngineFaultTest, WhoCannotWaitForTheStartIsTold) {
    start("load 100000");
    EXPECT_EQ(textOf(7, 32000, "", milliseconds(50)).error(), EngineError::Unavailable);
}

TEST_F(WhisperEngineFaultTest, AProgramThatFailsAtEveryStartIsGivenUp) {
    start("exit 1");
    EXPECT_EQ(textOf(7).error(), EngineError::Unavailable);
    EXPECT_TRUE(m_log.contains("exited with status 1"));
}

TEST_F(WhisperEngineFaultTest, AProgramThatWasReadyAndFailsEverSinceHoldsNobodyUpUntilItRecovers) {
    start("");
    EXPECT_TRUE(textOf(7));
    const pid_t child = runningChild();
    std::ofstream(m_model) << "exit 1";
    kill(child, SIGKILL);
    ASSERT_TRUE(waitUntil([this] { return m_log.contains("exited with status 1"); }));
    EXPECT_EQ(textOf(7, 32000, "", std::chrono::hours(1)).error(), EngineError::Unavailable);
    std::ofstream(m_model) << "";
    EXPECT_TRUE(recovers());
}

TEST_F(WhisperEngineFaultTest, ACrashCostsTheRecordingThatItHeldAndNoOther) {
    start("");
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(textOf(endsIt).error(), EngineError::Unavailable);
    EXPECT_EQ(textOf(9), "samples=32000 first=9 language=auto");
    EXPECT_GE(m_lost, 1);
}

TEST_F(WhisperEngineFaultTest, AChildThatIsKilledInTheMiddleComesBack) {
    start("answer 100000");
    std::thread client([this] { EXPECT_EQ(textOf(7).error(), EngineError::Unavailable); });
    ASSERT_TRUE(waitUntil([this] { return m_log.contains("has a recording"); }));
    std::ofstream(m_model) << "answer 0";
    const pid_t child = runningChild();
    kill(child, SIGKILL);
    client.join();
    EXPECT_TRUE(textOf(7));
    EXPECT_TRUE(waitUntil([&] { return childId() != child; }));
}

TEST_F(WhisperEngineFaultTest, AFailureOfOneChildIsNoneOfTheNext) {
    start("");
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    const pid_t first = runningChild();
    kill(first, SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return childId() != first && m_engine->isReady(); }));
    const pid_t second = childId();
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(childId(), second);
}

TEST_F(WhisperEngineFaultTest, ARecordingThatNobodyWaitsForCostsNoChild) {
    start("answer 100000");
    const std::vector<std::int16_t> samples(32000);
    const auto transcript = m_engine->transcribe(
        {.samples = samples, .isAbandoned = [this] { return m_log.contains("has a recording"); }});
    EXPECT_EQ(transcript.error(), EngineError::Abandoned);
    EXPECT_EQ(m_lost, 0);
    EXPECT_TRUE(m_engine->isReady());
    EXPECT_EQ(kill(runningChild(), 0), 0);
}

TEST_F(WhisperEngineFaultTest, AChildThatHangsIsReplacedWhenTheTimeIsOver) {
    start("");
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(textOf(hangsIt, 32000, "", milliseconds(200)).error(), EngineError::TimedOut);
    EXPECT_TRUE(recovers());
}

TEST_F(WhisperEngineFaultTest, AChildThatHangsWhileItHasNothingToDoIsReplaced) {
    auto times = quick();
    times.probeEvery = milliseconds(20);
    times.probe = milliseconds(100);
    start("", times);
    EXPECT_TRUE(textOf(7));
    const pid_t child = runningChild();
    kill(child, SIGSTOP);
    EXPECT_TRUE(waitUntil([&] { return m_engine->isReady() && childId() != child; }));
    EXPECT_TRUE(m_log.contains("does not answer"));
}

TEST_F(WhisperEngineFaultTest, AChildThatNeverBecomesReadyIsStartedAgain) {
    auto times = quick();
    times.start = milliseconds(100);
    start("load 100000", times);
    ASSERT_TRUE(waitUntil([&] { return m_log.contains("did not become ready"); }));
    std::ofstream(m_model) << "load 0";
    EXPECT_TRUE(waitUntil([&] { return m_engine->isReady(); }));
}

TEST_F(WhisperEngineFaultTest, BrokenAnswersCostNothingElse) {
    start("");
    EXPECT_TRUE(textOf(7));
    const pid_t child = runningChild();
    EXPECT_EQ(textOf(brokenAnswer).error(), EngineError::Failed);
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    EXPECT_EQ(textOf(brokenText), "samples=32000 first=105 language=auto\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_TRUE(textOf(7));
    EXPECT_EQ(childId(), child);
}

TEST_F(WhisperEngineFaultTest, AChildThatFailsTwiceInARowIsReplacedAndTheLogSaysWhy) {
    start("");
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    const pid_t child = runningChild();
    EXPECT_EQ(textOf(errorAnswer).error(), EngineError::Failed);
    EXPECT_TRUE(textOf(7));
    EXPECT_TRUE(waitUntil([&] { return childId() != child; }));
    EXPECT_TRUE(m_log.contains(R"(whisper.cpp: 500 {"error":"failed to process audio"})"));
}

TEST_F(WhisperEngineFaultTest, StoppingEndsTheChildAndWhatItDoes) {
    start("answer 100000");
    std::thread client([this] { EXPECT_EQ(textOf(7).error(), EngineError::Stopping); });
    ASSERT_TRUE(waitUntil([this] { return m_log.contains("has a recording"); }));
    const pid_t child = runningChild();
    m_engine->stop();
    client.join();
    EXPECT_EQ(textOf(7).error(), EngineError::Stopping);
    m_engine.reset();
    EXPECT_NE(kill(child, 0), 0);
}

TEST_F(WhisperEngineFaultTest, StoppingEndsAStartToo) {
    start("load 100000");
    std::thread client([this] { EXPECT_EQ(textOf(7).error(), EngineError::Stopping); });
    m_engine->stop();
    client.join();
}

TEST_F(WhisperEngineFaultTest, AProgramThatCannotBeStartedIsNamed) {
    m_engine = std::make_unique<WhisperEngine>(
        WhisperEngine::Settings{
            .program = "/nowhere/whisper-server", .modelFile = m_model, .times = quick()},
        m_log);
    EXPECT_EQ(textOf(7).error(), EngineError::Unavailable);
    EXPECT_TRUE(m_log.contains("/nowhere/whisper-server exited with status 127"));
}

}  // namespace quietlark
