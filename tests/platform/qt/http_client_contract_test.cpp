#include <memory>

#include <gtest/gtest.h>

#include "fakes/fake_http_client.h"
#include "peers/http_server.h"
#include "platform/qt/qt_http_client.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// An HTTP client together with the network that it talks to.
class Network {
public:
    virtual ~Network() = default;

    virtual HttpClient& client() = 0;
    /// An address of the network's one server.
    virtual QUrl url() = 0;
    virtual void serverAnswers(int status, const QByteArray& body) = 0;
    virtual void serverIsGone() = 0;
    /// Lets the network run until `condition` holds.
    virtual bool runUntil(const std::function<bool()>& condition) = 0;
};

class FakeNetwork final : public Network {
public:
    HttpClient& client() override { return m_client; }
    QUrl url() override { return QUrl(QStringLiteral("http://fake/x")); }
    void serverAnswers(int status, const QByteArray& body) override {
        m_client.respondTo(url().toString(), status, body);
    }
    void serverIsGone() override {}
    bool runUntil(const std::function<bool()>& condition) override {
        m_client.runAnswers();
        return condition();
    }

private:
    FakeHttpClient m_client;
};

class RealNetwork final : public Network {
public:
    HttpClient& client() override { return m_client; }
    QUrl url() override { return QUrl(m_server.url(QStringLiteral("/x"))); }
    void serverAnswers(int status, const QByteArray& body) override {
        m_server.on("/x", http_reply::answer(status, body));
    }
    void serverIsGone() override { m_server.close(); }
    bool runUntil(const std::function<bool()>& condition) override { return waitUntil(condition); }

private:
    HttpServer m_server;
    QtHttpClient m_client;
};

template <typename AnyNetwork>
class HttpClientContract : public testing::Test {
protected:
    HttpRequest get() { return {HttpRequest::Method::Get, network().url(), m_idleTimeout, {}, {}}; }
    HttpRequest post(const QByteArray& body) {
        return {HttpRequest::Method::Post, network().url(), m_idleTimeout, "text/plain", body};
    }
    void send(HttpRequest request) {
        m_handle = network().client().send(std::move(request), [this](HttpClient::Answer answer) {
            ++m_count;
            m_answer = std::move(answer);
        });
    }
    bool waitForAnswer() {
        return network().runUntil([this] { return m_count > 0; });
    }
    /// Whether an answer is there once another request, sent later, has been answered.
    bool answersBeforeAnother() {
        bool otherAnswered = false;
        const Cancellable other = network().client().send(
            get(), [&otherAnswered](const HttpClient::Answer&) { otherAnswered = true; });
        EXPECT_TRUE(network().runUntil([&otherAnswered] { return otherAnswered; }));
        return m_count > 0;
    }
    Network& network() { return m_network; }

    const std::chrono::seconds m_idleTimeout{20};
    AnyNetwork m_network;
    Cancellable m_handle;
    int m_count = 0;
    HttpClient::Answer m_answer;
};

using Networks = testing::Types<FakeNetwork, RealNetwork>;

class NetworkName {
public:
    template <typename AnyNetwork>
    static std::string GetName(int) {
        return std::is_same_v<AnyNetwork, FakeNetwork> ? "FakeHttpClient" : "QtHttpClient";
    }
};

TYPED_TEST_SUITE(HttpClientContract, Networks, NetworkName);

TYPED_TEST(HttpClientContract, AnswerCarriesStatusAndBody) {
    this->network().serverAnswers(200, "hello");
    this->send(this->get());
    ASSERT_TRUE(this->waitForAnswer());
    ASSERT_TRUE(this->m_answer);
    EXPECT_EQ(this->m_answer->status, 200);
    EXPECT_EQ(this->m_answer->body, "hello");
}

TYPED_TEST(HttpClientContract, EveryStatusIsAnAnswer) {
    for (const int status : {204, 299, 300, 304, 400, 401, 404, 407, 418, 500, 503, 600}) {
        this->m_count = 0;
        const QByteArray body = status == 204 || status == 304 ? "" : "words";
        this->network().serverAnswers(status, body);
        this->send(this->post("x"));
        ASSERT_TRUE(this->waitForAnswer());
        ASSERT_TRUE(this->m_answer) << status;
        EXPECT_EQ(this->m_answer->status, status);
        EXPECT_EQ(this->m_answer->body, body) << status;
    }
}

TYPED_TEST(HttpClientContract, NeverAnswersBeforeTheCallReturns) {
    this->network().serverAnswers(200, "");
    this->send(this->get());
    EXPECT_EQ(this->m_count, 0);
    EXPECT_TRUE(this->waitForAnswer());
}

TYPED_TEST(HttpClientContract, AnswersOnce) {
    this->network().serverAnswers(200, "");
    this->send(this->post("x"));
    ASSERT_TRUE(this->waitForAnswer());
    EXPECT_TRUE(this->answersBeforeAnother());
    EXPECT_EQ(this->m_count, 1);
}

TYPED_TEST(HttpClientContract, WithdrawnRequestIsNotAnswered) {
    this->network().serverAnswers(200, "");
    this->send(this->get());
    this->m_handle.cancel();
    EXPECT_FALSE(this->answersBeforeAnother());
}

TYPED_TEST(HttpClientContract, RequestIsWithdrawnWithItsHandle) {
    this->network().serverAnswers(200, "");
    this->send(this->post("x"));
    this->m_handle = Cancellable();
    EXPECT_FALSE(this->answersBeforeAnother());
}

TYPED_TEST(HttpClientContract, HandleMayBeDestroyedByTheHandler) {
    this->network().serverAnswers(200, "hello");
    QByteArray body;
    this->m_handle = this->network().client().send(this->get(), [&](HttpClient::Answer answer) {
        this->m_handle = Cancellable();
        body = answer->body;
    });
    EXPECT_TRUE(this->network().runUntil([&body] { return body == "hello"; }));
}

TYPED_TEST(HttpClientContract, NextRequestMayBeSentByTheHandler) {
    this->network().serverAnswers(200, "");
    this->m_handle = this->network().client().send(
        this->get(), [this](const HttpClient::Answer&) { this->send(this->get()); });
    EXPECT_TRUE(this->waitForAnswer());
}

TYPED_TEST(HttpClientContract, RequestsMayBeUnderWayTogether) {
    this->network().serverAnswers(200, "");
    int answers = 0;
    std::vector<Cancellable> handles;
    for (int i = 0; i < 10; ++i) {
        handles.push_back(this->network().client().send(
            this->get(), [&answers](const HttpClient::Answer&) { ++answers; }));
    }
    EXPECT_TRUE(this->network().runUntil([&answers] { return answers == 10; }));
}

TYPED_TEST(HttpClientContract, MissingServerIsATransportErrorWithASentence) {
    this->network().serverIsGone();
    this->send(this->post("x"));
    ASSERT_TRUE(this->waitForAnswer());
    ASSERT_FALSE(this->m_answer);
    EXPECT_FALSE(this->m_answer.error().domain.isEmpty());
    EXPECT_TRUE(this->m_answer.error().description.endsWith(u'.'));
}

TYPED_TEST(HttpClientContract, BodyOfExactlyTheLimitIsAccepted) {
    this->network().serverAnswers(200, QByteArray(HttpClient::maxBodyBytes, 'x'));
    this->send(this->get());
    ASSERT_TRUE(this->waitForAnswer());
    ASSERT_TRUE(this->m_answer);
    EXPECT_EQ(this->m_answer->body.size(), HttpClient::maxBodyBytes);
}

TYPED_TEST(HttpClientContract, BodyBeyondTheLimitIsATransportError) {
    this->network().serverAnswers(200, QByteArray(HttpClient::maxBodyBytes + 1, 'x'));
    this->send(this->get());
    ASSERT_TRUE(this->waitForAnswer());
    EXPECT_FALSE(this->m_answer);
}

}  // namespace
}  // namespace quietlark
