#include "platform/qt/qt_http_client_fixture.h"

namespace quietlark {
namespace {

constexpr const char* closedEarly = "closed the connection before its answer was complete";

/// Each fault must end in one TransportError, and an upload must have been sent once.
class QtHttpClientFaultTest : public QtHttpClientFixture {
protected:
    /// Waits that a test has to sit through.
    void expectASilentServer() { m_idleTimeout = std::chrono::milliseconds(300); }
    [[nodiscard]] std::size_t uploads() const { return m_server.requests().size(); }
};

TEST_F(QtHttpClientFaultTest, SilenceIsATimeout) {
    expectASilentServer();
    serverDoes(http_reply::silence());
    expectTransportError(post(url()), "did not answer in time");
    expectTransportError(get(url()), "did not answer in time");
}

TEST_F(QtHttpClientFaultTest, SilenceWithinABodyIsATimeout) {
    expectASilentServer();
    serverDoes(http_reply::bytesAndSilence("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf"));
    expectTransportError(post(url()), "did not answer in time");
}

TEST_F(QtHttpClientFaultTest, ServerThatNeverReadsIsATimeout) {
    expectASilentServer();
    m_server.stopReading();
    expectTransportError(post(url(), QByteArray(30 * 1000 * 1000, 'x')), "did not answer in time");
}

TEST_F(QtHttpClientFaultTest, UploadIsSentOnceWhenTheServerClosesWithoutAnAnswer) {
    serverDoes(http_reply::bytesAndClose());
    expectTransportError(post(url()), closedEarly);
    EXPECT_EQ(uploads(), 1U);
}

TEST_F(QtHttpClientFaultTest, LongUploadIsSentOnceWhenTheServerClosesWithoutAnAnswer) {
    serverDoes(http_reply::bytesAndClose());
    expectTransportError(post(url(), QByteArray(1000 * 1000, 'x')), closedEarly);
    EXPECT_EQ(uploads(), 1U);
}

TEST_F(QtHttpClientFaultTest, EmptyUploadIsSentOnceWhenTheServerClosesWithoutAnAnswer) {
    serverDoes(http_reply::bytesAndClose());
    expectTransportError(post(url(), ""), closedEarly);
    EXPECT_EQ(uploads(), 1U);
}

TEST_F(QtHttpClientFaultTest, UploadIsSentOnceWhenTheServerResets) {
    serverDoes(http_reply::reset());
    expectTransportError(post(url()), closedEarly);
    EXPECT_EQ(uploads(), 1U);
}

TEST_F(QtHttpClientFaultTest, UploadIsSentOnceWhenGarbageComesBack) {
    serverDoes(http_reply::bytesAndClose("garbage\r\n\r\nmore"));
    expectTransportError(post(url()), closedEarly);
    EXPECT_EQ(uploads(), 1U);
}

TEST_F(QtHttpClientFaultTest, UploadIsSentOnceWhenGarbageComesBackAndTheConnectionStays) {
    serverDoes(http_reply::bytesAndSilence("garbage\r\n\r\nmore\r\n"));
    expectTransportError(post(url()), closedEarly);
    EXPECT_EQ(uploads(), 1U);
}

TEST_F(QtHttpClientFaultTest, UploadIsSentOnceWhenTheHeadIsCut) {
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nContent-Le"));
    expectTransportError(post(url()), closedEarly);
    EXPECT_EQ(uploads(), 1U);
}

TEST_F(QtHttpClientFaultTest, UploadOverADeadConnectionIsSentOnceMore) {
    serverDoes(http_reply::json("{}"));
    ASSERT_TRUE(post(url()));
    serverDoes(http_reply::first(http_reply::bytesAndClose(), http_reply::json("[]")));
    expectAnswer(post(url()), 200, "[]");
    EXPECT_EQ(uploads(), 3U);
}

TEST_F(QtHttpClientFaultTest, UploadOverADeadConnectionIsNotSentAThirdTime) {
    serverDoes(http_reply::json("{}"));
    ASSERT_TRUE(post(url()));
    serverDoes(http_reply::bytesAndClose());
    expectTransportError(post(url()), closedEarly);
    EXPECT_EQ(uploads(), 3U);
}

TEST_F(QtHttpClientFaultTest, ConnectionThatTheServerClosedMeanwhileIsReplaced) {
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"));
    ASSERT_TRUE(post(url()));
    ASSERT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
    expectAnswer(post(url()), 200, "{}");
    EXPECT_EQ(uploads(), 2U);
}

TEST_F(QtHttpClientFaultTest, BodyCutBeforeItsLengthIsAnError) {
    serverDoes(http_reply::bytesAndClose(
        "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"text\":\"a\"}"));
    expectTransportError(post(url()), closedEarly);
    expectTransportError(get(url()), closedEarly);
}

TEST_F(QtHttpClientFaultTest, BodyCutBetweenChunksIsAnError) {
    serverDoes(http_reply::bytesAndClose(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n"));
    expectTransportError(post(url()), closedEarly);
}

TEST_F(QtHttpClientFaultTest, BodyCutWithinAChunkIsAnError) {
    serverDoes(http_reply::bytesAndClose(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n10\r\nhello"));
    expectTransportError(post(url()), closedEarly);
}

TEST_F(QtHttpClientFaultTest, BodyWithoutALengthEndsWithTheConnection) {
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\n\r\nto the end"));
    expectAnswer(post(url()), 200, "to the end");
}

TEST_F(QtHttpClientFaultTest, EndlessBodyIsGivenUp) {
    serverDoes(http_reply::endless());
    expectTransportError(post(url()), "too long");
    EXPECT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
}

TEST_F(QtHttpClientFaultTest, BodyThatDripsOnIsGivenUp) {
    m_idleTimeout = std::chrono::seconds(1);
    // An hour in all.
    serverDoes(http_reply::drip(QByteArray(36000, 'x'), std::chrono::milliseconds(100)));
    expectTransportError(post(url()), "in time");
    EXPECT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
}

TEST_F(QtHttpClientFaultTest, BodyThatUnpacksToTooMuchIsGivenUp) {
    // 100 MB of zeros pack a thousandfold; qCompress puts four bytes of its own in front.
    const QByteArray packed = qCompress(QByteArray(100 * 1000 * 1000, '\0')).sliced(4);
    serverDoes(http_reply::answer(200, packed, "Content-Encoding: deflate\r\n"));
    const auto outcome = post(url());
    ASSERT_TRUE(outcome);
    EXPECT_FALSE(*outcome);
}

TEST_F(QtHttpClientFaultTest, BrokenPackedBodyIsAnError) {
    serverDoes(http_reply::answer(200, "not packed", "Content-Encoding: gzip\r\n"));
    const auto outcome = post(url());
    ASSERT_TRUE(outcome);
    EXPECT_FALSE(*outcome);
}

TEST_F(QtHttpClientFaultTest, RefusedConnectionIsAnError) {
    m_server.close();
    expectTransportError(post(url()), "refused the connection");
}

TEST_F(QtHttpClientFaultTest, HostThatDoesNotExistIsAnError) {
    // ".invalid" is reserved never to exist (RFC 6761).
    expectTransportError(post(QStringLiteral("http://nowhere.invalid:8080/x")), "was not found");
}

TEST_F(QtHttpClientFaultTest, ErrorIsDescribedInFullForTheLog) {
    m_server.close();
    const auto outcome = post(url());
    ASSERT_TRUE(outcome && !*outcome);
    EXPECT_EQ(outcome->error().domain, QStringLiteral("QNetworkReply"));
    EXPECT_EQ(outcome->error().code, 1);
    EXPECT_EQ(outcome->error().userInfo.value(QStringLiteral("url")), url());
}

}  // namespace
}  // namespace quietlark
