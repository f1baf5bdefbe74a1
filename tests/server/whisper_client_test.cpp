#include "server/whisper_client.h"

#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/speech_server.h"

namespace quietlark {
namespace {

using Health = WhisperClient::Health;

/// Before a server that speaks as whisper.cpp's does, but below no secret path.
class WhisperClientTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_server.bind("127.0.0.1", 0));
        m_thread = std::thread([this] { EXPECT_TRUE(m_server.run()); });
    }

    void TearDown() override {
        m_server.stop();
        m_thread.join();
    }

    Health health(const std::string& path) const {
        return WhisperClient({.port = m_server.port(), .path = path})
            .health(std::chrono::seconds(20));
    }

    FakeSpeechEngine m_engine;
    FakeLog m_log;
    HttpApi m_api{m_engine};
    SpeechServer m_server{m_api, m_log};
    std::thread m_thread;
};

}  // namespace

TEST_F(WhisperClientTest, ItIsReadyWhenItSaysSo) {
    EXPECT_EQ(health(""), Health::Ready);
    m_engine.setReady(false);
    EXPECT_EQ(health(""), Health::Loading);
}

TEST_F(WhisperClientTest, AStrangerAtItsPortIsNotReady) {
    EXPECT_EQ(health("/secret"), Health::NoAnswer);
    EXPECT_TRUE(m_log.contains("GET /secret/ 404"));
}

}  // namespace quietlark
