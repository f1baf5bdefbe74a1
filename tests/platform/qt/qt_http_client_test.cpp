#include <QDir>
#include <QNetworkProxyFactory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include "platform/qt/qt_http_client_fixture.h"

namespace quietlark {
namespace {

class QtHttpClientTest : public QtHttpClientFixture {};

/// This process's own ends of connections to a port.
std::vector<int> socketsConnectedTo(std::uint16_t port) {
    std::vector<int> sockets;
    for (const QString& name : QDir(QStringLiteral("/dev/fd")).entryList(QDir::AllEntries)) {
        sockaddr_in peer{};
        socklen_t length = sizeof peer;
        const int socket = name.toInt();
        if (::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &length) != 0) continue;
        if (peer.sin_family == AF_INET && ntohs(peer.sin_port) == port) sockets.push_back(socket);
    }
    return sockets;
}

TEST_F(QtHttpClientTest, PostCarriesBodyTypeAndLength) {
    serverDoes(http_reply::json("{}"));
    const QByteArray body(300 * 1000, 'a');
    ASSERT_TRUE(post(url(), body));
    ASSERT_EQ(m_server.requestLines(), std::vector<QByteArray>{"POST /x"});
    const HttpServer::Request& request = m_server.requests().front();
    EXPECT_EQ(request.header("Content-Type"), "multipart/form-data; boundary=b");
    EXPECT_EQ(request.header("Content-Length"), "300000");
    EXPECT_EQ(request.body, body);
}

TEST_F(QtHttpClientTest, EmptyPostIsSent) {
    serverDoes(http_reply::json("{}"));
    ASSERT_TRUE(post(url(), ""));
    EXPECT_EQ(m_server.requests().front().header("Content-Length"), "0");
}

TEST_F(QtHttpClientTest, GetCarriesNoTypeAndNoBody) {
    serverDoes(http_reply::json("{}"));
    ASSERT_TRUE(get(url()));
    EXPECT_TRUE(m_server.requests().front().header("Content-Type").isNull());
    EXPECT_TRUE(m_server.requests().front().body.isEmpty());
}

TEST_F(QtHttpClientTest, NoOtherProtocolIsOffered) {
    serverDoes(http_reply::json("{}"));
    ASSERT_TRUE(get(url()));
    EXPECT_TRUE(m_server.requests().front().header("Upgrade").isNull());
    EXPECT_EQ(m_server.requests().front().header("Connection"), "Keep-Alive");
}

TEST_F(QtHttpClientTest, OneConnectionServesManyRequests) {
    serverDoes(http_reply::json("{}"));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(post(url()));
    ASSERT_TRUE(get(url()));
    EXPECT_EQ(m_server.connectionCount(), 1);
}

TEST_F(QtHttpClientTest, EndOfAnUploadIsNotHeldBack) {
    serverDoes(http_reply::json("{}"));
    ASSERT_TRUE(post(url()));
    const auto sockets = socketsConnectedTo(m_server.port());
    ASSERT_EQ(sockets.size(), 1U);
    int sendsAtOnce = 0;
    socklen_t length = sizeof sendsAtOnce;
    ::getsockopt(sockets.front(), IPPROTO_TCP, TCP_NODELAY, &sendsAtOnce, &length);
    EXPECT_NE(sendsAtOnce, 0);
}

TEST_F(QtHttpClientTest, WithdrawnRequestClosesItsConnection) {
    serverDoes(http_reply::silence());
    {
        const Cancellable handle =
            m_client.send({HttpRequest::Method::Get, QUrl(url()), m_idleTimeout, {}, {}},
                          [](const HttpClient::Answer&) { FAIL(); });
        ASSERT_TRUE(waitUntil([this] { return !m_server.requests().empty(); }));
    }
    EXPECT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
}

TEST_F(QtHttpClientTest, RequestsUnderWayEndWithTheClient) {
    serverDoes(http_reply::silence());
    Cancellable handle;
    {
        QtHttpClient client;
        handle = client.send({HttpRequest::Method::Post, QUrl(url()), m_idleTimeout, "a/b", "x"},
                             [](const HttpClient::Answer&) { FAIL(); });
        ASSERT_TRUE(waitUntil([this] { return !m_server.requests().empty(); }));
    }
    EXPECT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
}

TEST_F(QtHttpClientTest, CookiesAreNotSentBack) {
    serverDoes(http_reply::answer(200, "", "Set-Cookie: id=1; Path=/\r\n"));
    ASSERT_TRUE(get(url()));
    ASSERT_TRUE(get(url()));
    EXPECT_TRUE(m_server.requests().back().header("Cookie").isNull());
}

TEST_F(QtHttpClientTest, GetFollowsARedirectToAnotherHost) {
    HttpServer other;
    other.on("/y", http_reply::json("[]"));
    serverDoes(http_reply::answer(
        302, "", "Location: " + other.url(QStringLiteral("/y")).toUtf8() + "\r\n"));
    expectAnswer(get(url()), 200, "[]");
}

TEST_F(QtHttpClientTest, PostIsNotRedirectedToAnotherHost) {
    HttpServer other;
    for (const int status : {301, 302, 303, 307, 308}) {
        serverDoes(http_reply::answer(
            status, "", "Location: " + other.url(QStringLiteral("/y")).toUtf8() + "\r\n"));
        expectAnswer(post(url()), status, "");
    }
    EXPECT_EQ(other.connectionCount(), 0);
}

TEST_F(QtHttpClientTest, PostFollowsARedirectWithinItsServer) {
    serverDoes(http_reply::answer(307, "", "Location: /y\r\n"));
    m_server.on("/y", http_reply::json("[]"));
    const QByteArray body(100 * 1000, 'a');
    expectAnswer(post(url(), body), 200, "[]");
    EXPECT_EQ(m_server.requests().back().body, body);
}

TEST_F(QtHttpClientTest, PostIsNotTurnedIntoAGetByARedirect) {
    serverDoes(http_reply::answer(303, "", "Location: /y\r\n"));
    m_server.on("/y", http_reply::json("[]"));
    expectAnswer(post(url()), 303, "");
    EXPECT_EQ(m_server.requests().size(), 1U);
}

TEST_F(QtHttpClientTest, PostThatIsRedirectedInACircleEnds) {
    serverDoes(http_reply::answer(308, "", "Location: /x\r\n"));
    expectAnswer(post(url()), 308, "");
    EXPECT_EQ(m_server.requests().size(), 6U);
}

TEST_F(QtHttpClientTest, EveryAnswerOfARedirectedPostHasItsOwnTime) {
    QtHttpClient client(std::chrono::seconds(3));
    m_idleTimeout = std::chrono::seconds(3);
    // Five and a half seconds in all, of which no answer takes much more than one.
    const std::chrono::milliseconds pause(900);
    for (int i = 0; i < 5; ++i) {
        const QByteArray next = "Location: /" + QByteArray::number(i + 1) + "\r\n";
        m_server.on('/' + QByteArray::number(i),
                    http_reply::after(pause, http_reply::answer(307, "", next)));
    }
    m_server.on(
        "/5", http_reply::after(pause, http_reply::drip("[1,2,3]", std::chrono::milliseconds(20))));
    expectAnswer(
        outcomeOf(client, {HttpRequest::Method::Post, QUrl(m_server.url(QStringLiteral("/0"))),
                           m_idleTimeout, "a/b", "x"}),
        200, "[1,2,3]");
}

TEST_F(QtHttpClientTest, RedirectWithoutATargetIsAnAnswer) {
    serverDoes(http_reply::answer(302, ""));
    expectAnswer(post(url()), 302, "");
}

TEST_F(QtHttpClientTest, ProxyIsNotAskedForThisComputer) {
    HttpServer proxy;
    qputenv("http_proxy", proxy.url().toLatin1());
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    serverDoes(http_reply::json("{}"));
    const auto outcome = get(url());
    QNetworkProxyFactory::setUseSystemConfiguration(false);
    qunsetenv("http_proxy");
    ASSERT_TRUE(outcome && *outcome);
    EXPECT_EQ(proxy.connectionCount(), 0);
}

TEST_F(QtHttpClientTest, OnlyHttpAddressesAreAsked) {
    for (const char* address : {"file:///etc/passwd", "ftp://127.0.0.1/x", "data:,x", "qrc:/x"}) {
        expectTransportError(get(QString::fromLatin1(address)), "not an address");
    }
}

TEST_F(QtHttpClientTest, BodyThatComesSlowlyIsNotTimedOutWhileItMoves) {
    m_idleTimeout = std::chrono::seconds(3);
    // Three and a half seconds in all.
    serverDoes(http_reply::drip(QByteArray(70, 'x'), std::chrono::milliseconds(50)));
    expectAnswer(get(url()), 200, QByteArray(70, 'x'));
}

}  // namespace
}  // namespace quietlark
