#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/raw_http_client.h"
#include "server/requests.h"
#include "server/speech_server.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// A server that lets no upload wait while another is there.
class CrowdedServerTest : public testing::Test {
protected:
    explicit CrowdedServerTest(ClientPatience patience = {}) : m_server(m_api, m_log, patience) {}

    void SetUp() override {
        ASSERT_TRUE(m_server.bind("127.0.0.1", 0));
        m_thread = std::thread([this] { EXPECT_TRUE(m_server.run()); });
    }

    void TearDown() override {
        m_server.stop();
        m_thread.join();
    }

    FakeSpeechEngine m_engine;
    FakeLog m_log;
    HttpApi m_api{m_engine, {.limits = {.bodyBytes = 100000, .waiting = 0}}};
    SpeechServer m_server;
    std::thread m_thread;
    const std::string m_upload = postOf("/inference", formOf(wavOf(1000)));
};

constexpr std::chrono::milliseconds moment{200};

/// A server whose clients must hurry.
class StrictServerTest : public CrowdedServerTest {
protected:
    StrictServerTest()
        : CrowdedServerTest({.idle = moment,
                             .stall = moment,
                             .head = moment,
                             .transfer = moment,
                             .bytesPerSecond = 1000000}) {}
};

}  // namespace

TEST_F(StrictServerTest, AClientThatAsksNothingIsLeft) {
    RawHttpClient client(m_server.port());
    EXPECT_TRUE(client.isClosedByServer());
}

TEST_F(StrictServerTest, AClientThatStopsInTheMiddleIsLeft) {
    RawHttpClient client(m_server.port());
    client.send("GET / HT");
    EXPECT_NE(client.receive().status, 200);
    RawHttpClient uploader(m_server.port());
    uploader.send(m_upload.substr(0, m_upload.size() / 2));
    EXPECT_NE(uploader.receive().status, 200);
    EXPECT_TRUE(uploader.isClosedByServer());
}

TEST_F(StrictServerTest, AClientThatSendsByteByByteForeverIsLeft) {
    RawHttpClient client(m_server.port());
    client.send("GET / HTTP/1.1\r\nA: ");
    EXPECT_TRUE(waitUntil([&] { return !client.send("a"); }));
}

TEST_F(CrowdedServerTest, MoreUploadsThanMayWaitAreToldToComeBack) {
    const std::string form = formOf(wavOf(1000));
    RawHttpClient first(m_server.port());
    first.send(
        "POST /inference HTTP/1.1\r\nExpect: 100-continue\r\n"
        "Content-Type: multipart/form-data; boundary=B\r\nContent-Length: " +
        std::to_string(form.size()) + "\r\n\r\n");
    EXPECT_EQ(first.receive().status, 100);
    const auto answer = RawHttpClient(m_server.port()).ask(m_upload);
    EXPECT_EQ(answer.status, 503);
    EXPECT_NE(answer.head.find("Retry-After: "), std::string::npos);
    EXPECT_NE(answer.body.find("server_error"), std::string::npos);
    EXPECT_EQ(RawHttpClient(m_server.port()).ask(getModels).status, 200);
    EXPECT_EQ(first.ask(form).status, 200);
}

TEST_F(CrowdedServerTest, ChunksWithoutEndAreCutOff) {
    RawHttpClient client(m_server.port());
    client.send(chunkedHead + chunk("--B\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n"));
    const std::string more = chunk(std::string(10000, 'x'));
    for (int i = 0; i < 20; ++i)
        client.send(more);
    EXPECT_EQ(client.receive().status, 400);
}

TEST_F(CrowdedServerTest, AnUploadMakesRoomWhenItIsOver) {
    RawHttpClient client(m_server.port());
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(client.ask(m_upload).status, 200);
}

}  // namespace quietlark
