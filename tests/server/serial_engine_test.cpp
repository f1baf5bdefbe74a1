#include "server/serial_engine.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "server/fake_speech_engine.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// Notes who comes, by how many samples they bring, and keeps the first until it is let go.
class HeldEngine final : public SpeechEngine {
public:
    [[nodiscard]] std::string modelId() const override { return "held"; }
    [[nodiscard]] bool understands(std::string_view) const override { return true; }
    void stop() override {}

    [[nodiscard]] bool isReady() const override { return true; }

    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) override {
        std::unique_lock lock(m_mutex);
        m_isCrowded = m_isCrowded || m_isBusy;
        m_isBusy = true;
        m_order.push_back(request.samples.size());
        m_released.wait(lock, [this] { return m_isReleased; });
        m_isBusy = false;
        return Transcript();
    }

    void release() {
        const std::lock_guard lock(m_mutex);
        m_isReleased = true;
        m_released.notify_all();
    }

    std::vector<std::size_t> order() {
        const std::lock_guard lock(m_mutex);
        return m_order;
    }

    bool wasCrowded() {
        const std::lock_guard lock(m_mutex);
        return m_isCrowded;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_released;
    std::vector<std::size_t> m_order;
    bool m_isReleased = false;
    bool m_isBusy = false;
    bool m_isCrowded = false;
};

}  // namespace

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
