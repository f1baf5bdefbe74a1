#include "server/serial_engine.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "server/fake_speech_engine.h"
#include "server/held_engine.h"
#include "support/wait.h"

namespace quietlark {
TEST(SerialEngineTest, OneAtATime) {
    HeldEngine held;
    SerialEngine engine(held);
    held.release();
    std::vector<std::thread> clients;
    for (std::size_t i = 0; i < 8; ++i)
        clients.emplace_back([&engine] { EXPECT_TRUE(engine.transcribe({})); });
    for (std::thread& client : clients)
        client.join();
    EXPECT_EQ(held.order().size(), 8U);
    EXPECT_FALSE(held.wasCrowded());
}

TEST(SerialEngineTest, WhoCameFirstIsServedFirst) {
    HeldEngine held;
    SerialEngine engine(held);
    const std::vector<std::int16_t> samples(6);
    std::vector<std::thread> clients;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        clients.emplace_back(
            [&, i] { EXPECT_TRUE(engine.transcribe({.samples = std::span(samples).first(i)})); });
        ASSERT_TRUE(waitUntil([&] { return engine.waiting() + held.order().size() == i + 1; }));
    }
    held.release();
    for (std::thread& client : clients)
        client.join();
    EXPECT_EQ(held.order(), (std::vector<std::size_t>{0, 1, 2, 3, 4, 5}));
}

TEST(SerialEngineTest, WhoHasNoTurnByHisDeadlineIsToldThatItIsBusy) {
    HeldEngine held;
    SerialEngine engine(held);
    std::thread first([&engine] { EXPECT_TRUE(engine.transcribe({})); });
    ASSERT_TRUE(waitUntil([&] { return held.order().size() == 1; }));
    const auto now = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.transcribe({.samples = {}, .deadline = now}).error(), EngineError::Busy);
    EXPECT_EQ(engine.waiting(), 0U);
    held.release();
    first.join();
    EXPECT_TRUE(engine.transcribe({}));
}

TEST(SerialEngineTest, WhoHasLeftIsNotServed) {
    HeldEngine held;
    SerialEngine engine(held);
    std::thread first([&engine] { EXPECT_TRUE(engine.transcribe({})); });
    ASSERT_TRUE(waitUntil([&] { return held.order().size() == 1; }));
    std::atomic<bool> hasLeft = false;
    std::thread second([&] {
        const auto transcript = engine.transcribe({.isAbandoned = [&] { return hasLeft.load(); }});
        EXPECT_EQ(transcript.error(), EngineError::Abandoned);
    });
    ASSERT_TRUE(waitUntil([&] { return engine.waiting() == 1; }));
    hasLeft = true;
    second.join();
    EXPECT_EQ(engine.waiting(), 0U);
    held.release();
    first.join();
    const auto late = engine.transcribe({.isAbandoned = [] { return true; }});
    EXPECT_EQ(late.error(), EngineError::Abandoned);
    EXPECT_EQ(held.order().size(), 1U);
}

TEST(SerialEngineTest, ARecordingTakesItsRoomWhenItsTurnHasCome) {
    HeldEngine held;
    SerialEngine engine(held);
    std::thread first([&engine] { EXPECT_TRUE(engine.transcribe({})); });
    ASSERT_TRUE(waitUntil([&] { return held.order().size() == 1; }));
    std::atomic<int> made = 0;
    std::thread second([&] {
        const auto make = [&] {
            ++made;
            return std::vector<std::int16_t>(3);
        };
        EXPECT_TRUE(engine.transcribe({.samples = SpeechSamples(make)}));
    });
    ASSERT_TRUE(waitUntil([&] { return engine.waiting() == 1; }));
    EXPECT_EQ(made, 0);
    held.release();
    first.join();
    second.join();
    EXPECT_EQ(made, 1);
    EXPECT_EQ(held.order().back(), 3U);
}

TEST(SerialEngineTest, TheEngineBehindItIsAskedAndStopped) {
    FakeSpeechEngine fake;
    SerialEngine engine(fake);
    EXPECT_EQ(engine.modelId(), "fake-model");
    EXPECT_TRUE(engine.understands("en"));
    EXPECT_FALSE(engine.understands("de"));
    EXPECT_TRUE(engine.isReady());
    EXPECT_EQ(engine.transcribe({})->text, "hello world");
    engine.stop();
    EXPECT_EQ(engine.transcribe({}).error(), EngineError::Stopping);
}

}  // namespace quietlark
