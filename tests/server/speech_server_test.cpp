#include "server/speech_server.h"

#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/raw_http_client.h"
#include "server/requests.h"

namespace quietlark {
namespace {

class SpeechServerTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_server.bind("127.0.0.1", 0));
        m_thread = std::thread([this] { m_hasRun = m_server.run(); });
    }

    void TearDown() override {
        m_server.stop();
        if (m_thread.joinable()) m_thread.join();
        EXPECT_TRUE(m_hasRun);
    }

    RawHttpClient::Answer ask(std::string_view request) {
        return RawHttpClient(m_server.port()).ask(request);
    }

    FakeSpeechEngine m_engine;
    FakeLog m_log;
    HttpApi m_api{m_engine};
    SpeechServer m_server{m_api, m_log};
    std::thread m_thread;
    bool m_hasRun = false;
    const std::string m_upload = postOf("/inference", formOf(wavOf(16000)));
};

}  // namespace

TEST_F(SpeechServerTest, AnUploadIsAnsweredWithItsText) {
    const auto answer = ask(m_upload);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, R"({"text":"hello world"})");
    EXPECT_EQ(m_engine.sampleCount(), 16000U);
}

TEST_F(SpeechServerTest, AConnectionServesManyRequestsAlsoAfterErrors) {
    RawHttpClient client(m_server.port());
    EXPECT_EQ(client.ask("GET /api/v1/models HTTP/1.1\r\n\r\n").status, 404);
    EXPECT_EQ(client.ask(getModels).status, 200);
    EXPECT_EQ(client.ask(m_upload).status, 200);
    EXPECT_EQ(client.ask(postOf("/inference", formOf("no wav"))).status, 400);
    EXPECT_EQ(client.ask(m_upload).status, 200);
}

TEST_F(SpeechServerTest, RequestsSentTogetherAreAnsweredInTurn) {
    RawHttpClient client(m_server.port());
    client.send(std::string(getModels) + m_upload + "GET /x HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receive().status, 200);
    EXPECT_EQ(client.receive().body, R"({"text":"hello world"})");
    EXPECT_EQ(client.receive().status, 404);
}

TEST_F(SpeechServerTest, ARequestMayArriveByteByByte) {
    RawHttpClient client(m_server.port());
    for (const char byte : postOf("/inference", formOf(wavOf(10))))
        client.send({&byte, 1});
    EXPECT_EQ(client.receive().status, 200);
}

TEST_F(SpeechServerTest, FieldsOfTheFormReachTheApi) {
    const std::string form = formOf(wavOf(10), fieldOf("response_format", "text"));
    const auto answer = ask(postOf("/v1/audio/transcriptions", form));
    EXPECT_EQ(answer.body, "hello world\n");
    EXPECT_NE(answer.head.find("Content-Type: text/plain"), std::string::npos);
}

TEST_F(SpeechServerTest, TheQueryIsNotPartOfTheAddress) {
    EXPECT_EQ(ask("GET /v1/models?limit=1 HTTP/1.1\r\n\r\n").status, 200);
}

TEST_F(SpeechServerTest, AnswersAreNotCompressed) {
    const auto answer = ask("GET / HTTP/1.1\r\nAccept-Encoding: gzip, br\r\n\r\n");
    EXPECT_EQ(answer.head.find("Content-Encoding"), std::string::npos);
    EXPECT_NE(answer.body.find("whisper.cpp"), std::string::npos);
}

TEST_F(SpeechServerTest, PagesOfOtherSitesGetNoLeave) {
    const std::string foreign = "Host: 127.0.0.1\r\nOrigin: http://example.com\r\n";
    const auto answer = ask("GET /v1/models HTTP/1.1\r\n" + foreign + "\r\n");
    EXPECT_EQ(answer.status, 403);
    EXPECT_EQ(answer.head.find("Access-Control"), std::string::npos);
    EXPECT_EQ(ask("OPTIONS /inference HTTP/1.1\r\n" + foreign + "\r\n").status, 403);
    EXPECT_EQ(ask("OPTIONS /inference HTTP/1.1\r\n\r\n").status, 405);
}

TEST_F(SpeechServerTest, ANameThatWasMadeToLeadHereIsRefused) {
    EXPECT_EQ(ask("GET /v1/models HTTP/1.1\r\nHost: rebound.example.com:80\r\n\r\n").status, 403);
}

TEST_F(SpeechServerTest, ForeignUploadsAreRefusedWithoutBeingRead) {
    const auto answer =
        ask("POST /inference HTTP/1.1\r\nHost: localhost\r\nOrigin: null\r\nConnection: "
            "keep-alive\r\nContent-Length: 1000000\r\n\r\n");
    EXPECT_EQ(answer.status, 403);
    EXPECT_NE(answer.head.find("Connection: close"), std::string::npos);
}

TEST_F(SpeechServerTest, AMethodThatIsNotAllowedIsToldTheRightOne) {
    const auto answer = ask("GET /inference HTTP/1.1\r\n\r\n");
    EXPECT_EQ(answer.status, 405);
    EXPECT_NE(answer.head.find("Allow: POST"), std::string::npos);
}

TEST_F(SpeechServerTest, AnUploadThatIsTooLargeIsRefusedBeforeItArrives) {
    RawHttpClient client(m_server.port());
    const auto answer = client.ask(
        "POST /inference HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=B\r\n"
        "Content-Length: 99999999999\r\n\r\nthe first of many bytes");
    EXPECT_EQ(answer.status, 413);
    EXPECT_NE(answer.head.find("Connection: close"), std::string::npos);
    EXPECT_TRUE(client.isClosedByServer());
}

TEST_F(SpeechServerTest, AClientThatAsksFirstIsToldBeforeItSends) {
    const std::string head = "POST /inference HTTP/1.1\r\nExpect: 100-continue\r\n";
    const std::string form = formOf(wavOf(10));
    EXPECT_EQ(ask(head + "Content-Length: 99999999\r\n\r\n").status, 413);

    RawHttpClient client(m_server.port());
    client.send(head + "Content-Type: multipart/form-data; boundary=B\r\nContent-Length: " +
                std::to_string(form.size()) + "\r\n\r\n");
    EXPECT_EQ(client.receive().status, 100);
    EXPECT_EQ(client.ask(form).status, 200);
}

TEST_F(SpeechServerTest, AnUploadOfUnknownOrImpossibleLengthIsRefused) {
    const std::string head =
        "POST /inference HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=B\r\n";
    EXPECT_EQ(ask(head + "\r\n").status, 411);
    EXPECT_EQ(ask(head + "Content-Length: -1\r\n\r\n").status, 413);
}

TEST_F(SpeechServerTest, ChunksThatMakeNoSenseAreRefused) {
    EXPECT_EQ(ask(std::string(chunkedHead) + "5\r\nhello\r\n0\r\n\r\n").status, 400);
    EXPECT_EQ(ask(std::string(chunkedHead) + "no number\r\n\r\n").status, 400);
    EXPECT_EQ(ask("POST /inference HTTP/1.1\r\nTransfer-Encoding: chunked\r\nContent-Length: 5"
                  "\r\n\r\nhello")
                  .status,
              400);
    EXPECT_EQ(ask("POST /inference HTTP/1.1\r\nTransfer-Encoding: gzip\r\n\r\n").status, 501);
    EXPECT_EQ(ask(getModels).status, 200);
}

TEST_F(SpeechServerTest, ACompressedUploadIsRefused) {
    EXPECT_EQ(ask("POST /inference HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=B\r\n"
                  "Content-Encoding: gzip\r\nContent-Length: 4\r\n\r\n\x1f\x8b..")
                  .status,
              415);
}

TEST_F(SpeechServerTest, BrokenFormsAreRefused) {
    EXPECT_EQ(ask(postOf("/inference", "")).status, 400);
    EXPECT_EQ(ask(postOf("/inference", "no form at all")).status, 400);
    EXPECT_EQ(ask(postOf("/inference", "--B\r\n\r\n--B--")).status, 400);
    EXPECT_EQ(ask(postOf("/inference", formOf(wavOf(100)).substr(0, 200))).status, 400);
    EXPECT_EQ(ask("POST /inference HTTP/1.1\r\nContent-Type: multipart/form-data\r\n"
                  "Content-Length: 2\r\n\r\nxx")
                  .status,
              400);
}

TEST_F(SpeechServerTest, ABrokenFormCostsNoConnection) {
    RawHttpClient client(m_server.port());
    const auto answer = client.ask(postOf("/inference", "--B--\r\n"));
    EXPECT_EQ(answer.status, 400);
    EXPECT_EQ(answer.head.find("Connection: close"), std::string::npos);
    EXPECT_EQ(client.ask(m_upload).status, 200);
}

TEST_F(SpeechServerTest, AnUploadThatIsGivenUpEndsTheConnectionAndSaysSo) {
    RawHttpClient client(m_server.port());
    const auto answer = client.ask(std::string(chunkedHead) + "no number\r\n\r\n");
    EXPECT_EQ(answer.status, 400);
    EXPECT_NE(answer.head.find("Connection: close"), std::string::npos);
    EXPECT_TRUE(client.isClosedByServer());
}

TEST_F(SpeechServerTest, WhatIsNoRequestIsAnsweredAsAnError) {
    RawHttpClient client(m_server.port());
    const auto answer = client.ask("HELO\r\n\r\n");
    EXPECT_EQ(answer.status, 400);
    EXPECT_NE(answer.body.find(R"({"error":{"message":)"), std::string::npos);
    EXPECT_TRUE(client.isClosedByServer());
}

TEST_F(SpeechServerTest, AHeadWithoutEndIsCutOff) {
    RawHttpClient line(m_server.port());
    line.send("GET /" + std::string(1 << 20, 'x'));
    line.finishSending();
    EXPECT_NE(line.receive().status, 200);

    RawHttpClient fields(m_server.port());
    std::string request = "GET / HTTP/1.1\r\n";
    for (int i = 0; i < 10'000; ++i)
        request += "Field: value\r\n";
    fields.send(request);
    fields.finishSending();
    EXPECT_EQ(fields.receive().status, 400);
    EXPECT_EQ(ask(getModels).status, 200);
}

TEST_F(SpeechServerTest, FieldsMeantToHurtDoNot) {
    std::string ranges = "Range: bytes=0-1";
    while (ranges.size() < 8000)
        ranges += ",0-1";
    EXPECT_NE(ask("GET / HTTP/1.1\r\n" + ranges + "\r\n\r\n").status, 0);
    EXPECT_EQ(ask("GET / HTTP/1.1\r\nRange: bytes=0-1\r\n\r\n").status, 200);
    const std::string name(8000, 'n');
    const auto form = "--B\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\nx";
    EXPECT_EQ(ask(postOf("/inference", formOf(wavOf(10), form + "\r\n"))).status, 200);
    EXPECT_EQ(ask(getModels).status, 200);
}

TEST_F(SpeechServerTest, AClientThatLeavesInTheMiddleHarmsNobody) {
    {
        RawHttpClient client(m_server.port());
        client.send(m_upload.substr(0, m_upload.size() / 2));
    }
    EXPECT_EQ(ask(m_upload).status, 200);
    EXPECT_EQ(m_engine.transcriptions(), 1);
}

TEST_F(SpeechServerTest, ManyClientsAtOnceEachGetTheirAnswer) {
    std::vector<std::thread> clients;
    for (int i = 0; i < 48; ++i) {
        clients.emplace_back([this, i] {
            const auto answer = ask(i % 2 == 0 ? m_upload : postOf("/inference", formOf("no wav")));
            EXPECT_EQ(answer.status, i % 2 == 0 ? 200 : 400);
        });
    }
    for (std::thread& client : clients)
        client.join();
    EXPECT_EQ(m_engine.transcriptions(), 24);
}

TEST_F(SpeechServerTest, MoreClientsThanThreadsAreServedWhenTheOthersAreIdle) {
    std::vector<std::unique_ptr<RawHttpClient>> idle;
    for (int i = 0; i < 80; ++i)
        idle.push_back(std::make_unique<RawHttpClient>(m_server.port()));
    EXPECT_EQ(ask(getModels).status, 200);
}

TEST_F(SpeechServerTest, EachRequestIsOneLineInTheLogWithoutTheText) {
    EXPECT_EQ(ask(m_upload).status, 200);
    EXPECT_EQ(ask("GET /nothing HTTP/1.1\r\n\r\n").status, 404);
    m_server.stop();
    m_thread.join();
    const auto lines = m_log.lines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].text.starts_with("POST /inference 200 audio=1.00s elapsed="));
    EXPECT_EQ(lines[1].text, "GET /nothing 404");
    EXPECT_FALSE(m_log.contains("hello"));
}

TEST_F(SpeechServerTest, StoppingDoesNotWaitForIdleClients) {
    RawHttpClient idle(m_server.port());
    EXPECT_EQ(idle.ask(getModels).status, 200);
    RawHttpClient halfway(m_server.port());
    halfway.send("GET / HT");
    m_server.stop();
    m_thread.join();
    EXPECT_TRUE(idle.isClosedByServer());
    EXPECT_TRUE(halfway.isClosedByServer());
}

TEST_F(SpeechServerTest, APortServesOneServer) {
    SpeechServer other(m_api, m_log);
    EXPECT_FALSE(other.bind("127.0.0.1", m_server.port()));
}

TEST(SpeechServerStopTest, AServerStoppedBeforeItRunsDoesNotRun) {
    FakeSpeechEngine engine;
    FakeLog log;
    HttpApi api(engine);
    SpeechServer server(api, log);
    ASSERT_TRUE(server.bind("127.0.0.1", 0));
    server.stop();
    EXPECT_TRUE(server.run());
}

}  // namespace quietlark
