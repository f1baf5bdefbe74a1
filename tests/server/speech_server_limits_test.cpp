#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/held_engine.h"
#include "server/raw_http_client.h"
#include "server/requests.h"
#include "server/serial_engine.h"
#include "server/speech_server.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// A server before an engine that serves one recording after the other.
template <typename Engine>
class LimitedServerTest : public testing::Test {
protected:
    explicit LimitedServerTest(ServerLimits limits = {}, ClientPatience patience = {})
        : m_api(m_queue, {.limits = limits}), m_server(m_api, m_log, patience) {}

    void SetUp() override {
        ASSERT_TRUE(m_server.bind("127.0.0.1", 0));
        m_thread = std::thread([this] { EXPECT_TRUE(m_server.run()); });
    }

    void TearDown() override {
        m_engine.stop();
        m_server.stop();
        m_thread.join();
    }

    std::unique_ptr<RawHttpClient> connected() const {
        return std::make_unique<RawHttpClient>(m_server.port());
    }

    /// A client that was told to send its upload, and has not yet.
    std::unique_ptr<RawHttpClient> invited() const { return invited(m_form.size()); }
    std::unique_ptr<RawHttpClient> invited(std::size_t announcedBytes) const {
        auto client = connected();
        client->send(
            "POST /inference HTTP/1.1\r\nExpect: 100-continue\r\n"
            "Content-Type: multipart/form-data; boundary=B\r\nContent-Length: " +
            std::to_string(announcedBytes) + "\r\n\r\n");
        EXPECT_EQ(client->receive().status, 100);
        return client;
    }

    Engine m_engine;
    SerialEngine m_queue{m_engine};
    FakeLog m_log;
    HttpApi m_api;
    SpeechServer m_server;
    std::thread m_thread;
    const std::string m_form = formOf(wavOf(1000));
    const std::string m_upload = postOf("/inference", m_form);
};

/// With the limits that the program has when it is told nothing.
class UsualServerTest : public LimitedServerTest<FakeSpeechEngine> {};

class SpeechServerQueueTest : public LimitedServerTest<HeldEngine> {};

constexpr std::chrono::milliseconds transferTime{1000};

/// A server whose engine takes longer than a client may.
class SlowEngineTest : public LimitedServerTest<HeldEngine> {
protected:
    SlowEngineTest() : LimitedServerTest({}, {.transfer = transferTime}) {}
};

/// A server that lets no upload wait while another is there.
class CrowdedServerTest : public LimitedServerTest<FakeSpeechEngine> {
protected:
    explicit CrowdedServerTest(ClientPatience patience = {})
        : LimitedServerTest({.bodyBytes = 100000, .waiting = 0}, patience) {}
};

/// A server with room for four uploads of the largest size, and for many more clients.
class RoomyServerTest : public LimitedServerTest<FakeSpeechEngine> {
protected:
    RoomyServerTest() : LimitedServerTest({.bodyBytes = 100000, .totalBytes = 400000}) {}
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

/// A server whose clients may stop for as long as they keep up a pace, if a slow one.
class PacedServerTest : public CrowdedServerTest {
protected:
    PacedServerTest()
        : CrowdedServerTest(
              {.stall = std::chrono::hours(24), .transfer = moment, .bytesPerSecond = 1}) {}
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

TEST_F(PacedServerTest, ALargeUploadThatIsAnnouncedAndDoesNotComeBuysNoTime) {
    RawHttpClient client(m_server.port());
    client.send(
        "POST /inference HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=B\r\n"
        "Content-Length: 100000\r\n\r\n--B\r\n");
    EXPECT_NE(client.receive().status, 200);
}

TEST_F(CrowdedServerTest, MoreUploadsThanMayWaitAreToldToComeBack) {
    const auto first = invited();
    const auto answer = RawHttpClient(m_server.port()).ask(m_upload);
    EXPECT_EQ(answer.status, 503);
    EXPECT_NE(answer.head.find("Retry-After: "), std::string::npos);
    EXPECT_NE(answer.body.find("server_error"), std::string::npos);
    EXPECT_EQ(RawHttpClient(m_server.port()).ask(getModels).status, 200);
    EXPECT_EQ(first->ask(m_form).status, 200);
}

TEST_F(UsualServerTest, WhenAllPlacesAreTakenTheNextIsToldAndOthersAreAnswered) {
    std::vector<std::unique_ptr<RawHttpClient>> guests;
    for (int i = 0; i < 65; ++i)
        guests.push_back(invited());
    const auto answer = connected()->ask(m_upload);
    EXPECT_EQ(answer.status, 503);
    EXPECT_NE(answer.head.find("Retry-After: "), std::string::npos);
    EXPECT_EQ(connected()->ask("GET /health HTTP/1.1\r\n\r\n").status, 200);
    for (const auto& guest : guests)
        EXPECT_EQ(guest->ask(m_form).status, 200);
}

TEST_F(RoomyServerTest, UploadsThatWereAnnouncedAndDoNotComeKeepNobodyOut) {
    std::vector<std::unique_ptr<RawHttpClient>> idlers;
    for (int i = 0; i < 16; ++i)
        idlers.push_back(invited(100000));
    EXPECT_EQ(connected()->ask(m_upload).status, 200);
}

TEST_F(RoomyServerTest, AnUploadThatFindsNoRoomOnTheWayIsToldToComeBack) {
    const std::string form = formOf(wavOf(45000));
    std::vector<std::unique_ptr<RawHttpClient>> clients;
    for (int i = 0; i < 5; ++i)
        clients.push_back(invited(form.size()));
    // Each stops before its end, so that it keeps the room that it has; who came first, last.
    for (auto client = clients.rbegin(); client != clients.rend(); ++client)
        (*client)->send(form.substr(0, form.size() - 1));
    std::atomic<int> refused = 0;
    std::vector<std::thread> threads;
    for (const auto& client : clients) {
        const bool isFirst = client == clients.front();
        threads.emplace_back([&refused, &client, isFirst] {
            const auto answer = client->receive();
            if (answer.status == 200) return;
            EXPECT_FALSE(isFirst);
            EXPECT_EQ(answer.status, 503);
            EXPECT_NE(answer.head.find("Retry-After: "), std::string::npos);
            EXPECT_NE(answer.head.find("Connection: close"), std::string::npos);
            ++refused;
        });
    }
    EXPECT_TRUE(waitUntil([&] { return refused > 0; }));
    for (const auto& client : clients)
        client->send(form.substr(form.size() - 1));
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(connected()->ask(m_upload).status, 200);
}

TEST_F(SpeechServerQueueTest, ARecordingWhoseClientHasLeftIsNotTranscribed) {
    const auto first = connected();
    first->send(m_upload);
    ASSERT_TRUE(waitUntil([&] { return m_engine.order().size() == 1; }));
    auto second = connected();
    second->send(postOf("/inference", formOf(wavOf(2000))));
    ASSERT_TRUE(waitUntil([&] { return m_queue.waiting() == 1; }));
    const auto third = connected();
    third->send(postOf("/inference", formOf(wavOf(3000))));
    ASSERT_TRUE(waitUntil([&] { return m_queue.waiting() == 2; }));
    second.reset();
    EXPECT_TRUE(waitUntil([&] { return m_log.contains("POST /inference 499"); }));
    m_engine.release();
    EXPECT_EQ(first->receive().status, 200);
    EXPECT_EQ(third->receive().status, 200);
    EXPECT_EQ(m_engine.order(), (std::vector<std::size_t>{1000, 3000}));
    for (const auto& line : m_log.lines())
        EXPECT_EQ(line.level, LogLevel::Info) << line.text;
}

TEST_F(SlowEngineTest, AnAnswerHasItsOwnTimeHoweverTheUploadCame) {
    const auto whole = connected();
    whole->send(m_upload);
    const auto chunked = connected();
    chunked->send(chunkedHead + chunk(m_form) + "0\r\n\r\n");
    ASSERT_TRUE(waitUntil([&] { return m_engine.order().size() + m_queue.waiting() == 2; }));
    const auto end = std::chrono::steady_clock::now() + transferTime;
    ASSERT_TRUE(waitUntil([&] { return std::chrono::steady_clock::now() > end; }));
    m_engine.release();
    EXPECT_EQ(whole->receive().status, 200);
    EXPECT_EQ(chunked->receive().status, 200);
}

TEST_F(UsualServerTest, AnUploadInChunksIsReadToItsEnd) {
    RawHttpClient client(m_server.port());
    client.send(chunkedHead);
    const std::string form = formOf(wavOf(16000));
    for (std::size_t begin = 0; begin < form.size(); begin += 5000)
        client.send(chunk(form.substr(begin, 5000)));
    const auto answer = client.ask("0\r\n\r\n");
    EXPECT_EQ(answer.body, R"({"text":"hello world"})");
    EXPECT_NE(answer.head.find("Connection: close"), std::string::npos);
    EXPECT_EQ(m_engine.sampleCount(), 16000U);
}

TEST_F(UsualServerTest, ChunksMayEndAnywhereInAForm) {
    const std::string form = formOf(wavOf(10));
    for (const std::size_t size : {1, 2, 3, 7}) {
        RawHttpClient client(m_server.port());
        client.send(chunkedHead);
        for (std::size_t begin = 0; begin < form.size(); begin += size)
            client.send(chunk(form.substr(begin, size)));
        EXPECT_EQ(client.ask("0\r\n\r\n").status, 200) << size;
    }
}

TEST_F(CrowdedServerTest, ChunksWithoutEndAreCutOff) {
    RawHttpClient client(m_server.port());
    client.send(chunkedHead + chunk("--B\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n"));
    const std::string more = chunk(std::string(10000, 'x'));
    for (int i = 0; i < 20; ++i)
        client.send(more);
    EXPECT_EQ(client.receive().status, 400);
}

TEST_F(CrowdedServerTest, WhatWouldFailAgainIsNotToBeTriedAgain) {
    m_engine.result = tl::unexpected(EngineError::Failed);
    const auto answer = connected()->ask(m_upload);
    EXPECT_EQ(answer.status, 500);
    EXPECT_NE(answer.head.find("x-should-retry: false"), std::string::npos);
    EXPECT_EQ(connected()->ask(getModels).head.find("x-should-retry"), std::string::npos);
}

TEST_F(CrowdedServerTest, AnUploadMakesRoomWhenItIsOver) {
    RawHttpClient client(m_server.port());
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(client.ask(m_upload).status, 200);
}

}  // namespace quietlark
