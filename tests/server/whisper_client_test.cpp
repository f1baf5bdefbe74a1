#include "server/whisper_client.h"

#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/speech_server.h"

namespace quietlark {
namespace {

using Health = WhisperClient::Health;

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

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

    /// The prompt that arrives when this one is sent.
    std::string promptOf(const std::string& prompt) {
        const std::vector<std::int16_t> samples(32000);
        const WhisperClient client({.port = m_server.port(), .path = ""}, m_log);
        EXPECT_TRUE(client.transcribe({.samples = samples, .prompt = prompt}, "en"));
        const std::string asked = m_engine.asked();
        return asked.substr(0, asked.size() - std::string(" 0.00").size());
    }

    Health health(const std::string& path) {
        return WhisperClient({.port = m_server.port(), .path = path}, m_log)
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

TEST_F(WhisperClientTest, OfALongPromptTheEndIsSentInWholeCharacters) {
    EXPECT_EQ(promptOf("Quietlark, gr\xc3\xbcn"), "Quietlark, gr\xc3\xbcn");
    EXPECT_EQ(promptOf(std::string(400000, 'a')), std::string(1000, 'a'));
    const std::string characters = repeated("\xe2\x82\xac", 400);
    EXPECT_EQ(promptOf(characters), characters.substr(0, 999));
    EXPECT_EQ(promptOf(std::string(2000, '\x80')), "");
}

TEST_F(WhisperClientTest, WhyARecordingFailedIsInTheLog) {
    m_engine.result = tl::unexpected(EngineError::Failed);
    const std::vector<std::int16_t> samples(32000);
    const WhisperClient client({.port = m_server.port(), .path = ""}, m_log);
    EXPECT_EQ(client.transcribe({.samples = samples}, "en").error(), EngineError::Failed);
    EXPECT_TRUE(m_log.contains("whisper.cpp: 500 {\"error\":"));
}

}  // namespace quietlark
