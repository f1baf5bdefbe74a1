#pragma once

#include <optional>

#include <gtest/gtest.h>

#include "peers/http_server.h"
#include "platform/qt/qt_http_client.h"
#include "support/wait.h"

namespace quietlark {

/// A client, and a server that does as it is told.
class QtHttpClientFixture : public testing::Test {
protected:
    /// Asks for `url` and waits for the outcome; nothing when none came in time.
    std::optional<HttpClient::Answer> get(const QString& url) {
        return outcomeOf({HttpRequest::Method::Get, QUrl(url), m_idleTimeout, {}, {}});
    }
    std::optional<HttpClient::Answer> post(const QString& url, const QByteArray& body = "body") {
        return outcomeOf({HttpRequest::Method::Post, QUrl(url), m_idleTimeout,
                          "multipart/form-data; boundary=b", body});
    }

    std::optional<HttpClient::Answer> outcomeOf(HttpRequest request) {
        return outcomeOf(m_client, std::move(request));
    }
    static std::optional<HttpClient::Answer> outcomeOf(HttpClient& client, HttpRequest request) {
        std::optional<HttpClient::Answer> outcome;
        const Cancellable handle =
            client.send(std::move(request),
                        [&outcome](HttpClient::Answer answer) { outcome = std::move(answer); });
        if (!waitUntil([&outcome] { return outcome.has_value(); })) return std::nullopt;
        return outcome;
    }

    [[nodiscard]] QString url() const { return m_server.url(QStringLiteral("/x")); }
    void serverDoes(HttpServer::Reply reply) { m_server.on("/x", std::move(reply)); }

    std::chrono::milliseconds m_idleTimeout = std::chrono::seconds(20);
    HttpServer m_server;
    QtHttpClient m_client;
};

/// That `outcome` is an answer, be its status good or bad.
inline void expectAnswer(const std::optional<HttpClient::Answer>& outcome, int status,
                         const QByteArray& body) {
    ASSERT_TRUE(outcome);
    ASSERT_TRUE(*outcome) << outcome->error().description.toStdString() << " code "
                          << outcome->error().code;
    EXPECT_EQ((*outcome)->status, status);
    EXPECT_EQ((*outcome)->body, body);
}

/// That `outcome` is a TransportError whose sentence holds `words`.
inline void expectTransportError(const std::optional<HttpClient::Answer>& outcome,
                                 const char* words) {
    ASSERT_TRUE(outcome);
    ASSERT_FALSE(*outcome) << "status " << (*outcome)->status;
    const std::string sentence = outcome->error().description.toStdString();
    EXPECT_NE(sentence.find(words), std::string::npos) << sentence;
    EXPECT_TRUE(sentence.ends_with('.')) << sentence;
}

}  // namespace quietlark
