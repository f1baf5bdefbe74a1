#include <optional>

#include <gtest/gtest.h>

#include "fakes/fake_http_streams.h"
#include "peers/http_server.h"
#include "platform/curl/curl_http_streams.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// Streams together with the one server that they ask, which answers every request the same.
class FakeStreamNetwork {
public:
    HttpStreams& streams() { return m_streams; }
    void serverAnswers(int status, const QByteArray& body) {
        m_answer = [this, status, body] {
            m_streams.head({status, {{"X-Length", QByteArray::number(body.size())}}});
            m_streams.bytes(body);
            m_streams.end();
        };
    }
    void serverBreaksOff(const QByteArray& body) {
        m_answer = [this, body] {
            m_streams.head({200, {}});
            m_streams.bytes(body);
            m_streams.fail(QStringLiteral("It broke off."));
        };
    }
    bool runUntil(const std::function<bool()>& condition) {
        m_answer();
        return condition();
    }
    static QUrl url() { return QUrl(QStringLiteral("http://fake/x")); }

private:
    FakeHttpStreams m_streams;
    std::function<void()> m_answer;
};

class RealStreamNetwork {
public:
    HttpStreams& streams() { return m_streams; }
    void serverAnswers(int status, const QByteArray& body) {
        const QByteArray length = QByteArray::number(body.size());
        m_server.on("/x", http_reply::answer(status, body, "X-Length: " + length + "\r\n"));
    }
    void serverBreaksOff(const QByteArray& body) {
        m_server.on("/x", http_reply::bytesAndClose(
                              "HTTP/1.1 200 OK\r\nContent-Length: 9999\r\n\r\n" + body));
    }
    static bool runUntil(const std::function<bool()>& condition) { return waitUntil(condition); }
    [[nodiscard]] QUrl url() const { return QUrl(m_server.url(QStringLiteral("/x"))); }

private:
    HttpServer m_server;
    CurlHttpStreams m_streams;
};

template <typename AnyNetwork>
class HttpStreamsContract : public testing::Test {
protected:
    void ask() {
        m_handle = m_network.streams().get(
            {m_network.url(), {}}, {.onHead =
                                        [this](const HttpHead& head) {
                                            m_head = head;
                                            if (m_withdrawsAtHead) m_handle.cancel();
                                        },
                                    .onBytes =
                                        [this](QByteArrayView bytes) {
                                            EXPECT_TRUE(m_head) << "bytes before the head";
                                            m_body.append(bytes);
                                        },
                                    .onEnd = [this](const auto& outcome) { m_outcome = outcome; }});
    }
    [[nodiscard]] bool ends() {
        return m_network.runUntil([this] { return m_outcome.has_value(); });
    }

    AnyNetwork m_network;
    Cancellable m_handle;
    bool m_withdrawsAtHead = false;
    std::optional<HttpHead> m_head;
    QByteArray m_body;
    std::optional<tl::expected<void, TransportError>> m_outcome;
};

using Networks = testing::Types<FakeStreamNetwork, RealStreamNetwork>;
TYPED_TEST_SUITE(HttpStreamsContract, Networks);

TYPED_TEST(HttpStreamsContract, AnAnswerIsAHeadABodyAndAnEnd) {
    this->m_network.serverAnswers(200, "body");
    this->ask();
    EXPECT_FALSE(this->m_head);
    ASSERT_TRUE(this->ends());
    EXPECT_EQ(this->m_head->status, 200);
    EXPECT_EQ(this->m_head->header("x-length"), "4");
    EXPECT_EQ(this->m_body, "body");
    EXPECT_TRUE(this->m_outcome->has_value());
}

TYPED_TEST(HttpStreamsContract, ABadStatusIsAnAnswerToo) {
    this->m_network.serverAnswers(404, "sorry");
    this->ask();
    ASSERT_TRUE(this->ends());
    EXPECT_EQ(this->m_head->status, 404);
    EXPECT_TRUE(this->m_outcome->has_value());
}

TYPED_TEST(HttpStreamsContract, ARedirectIsNotFollowed) {
    this->m_network.serverAnswers(302, "");
    this->ask();
    ASSERT_TRUE(this->ends());
    EXPECT_EQ(this->m_head->status, 302);
}

TYPED_TEST(HttpStreamsContract, ABodyThatBreaksOffIsAFailureAfterWhatHasCome) {
    this->m_network.serverBreaksOff("half");
    this->ask();
    ASSERT_TRUE(this->ends());
    EXPECT_EQ(this->m_body, "half");
    ASSERT_FALSE(this->m_outcome->has_value());
    EXPECT_TRUE(this->m_outcome->error().description.endsWith(u'.'));
}

TYPED_TEST(HttpStreamsContract, ARequestThatIsWithdrawnWithinAHandlerSaysNothingMore) {
    this->m_network.serverAnswers(200, "body");
    this->m_withdrawsAtHead = true;
    this->ask();
    ASSERT_TRUE(this->m_network.runUntil([this] { return this->m_head.has_value(); }));
    EXPECT_EQ(this->m_body, "");
    EXPECT_FALSE(this->m_outcome);
}

}  // namespace
}  // namespace quietlark
