#include "platform/curl/curl_http_streams.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <thread>

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/posix/open_descriptors.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// Sends one answer and ends its side of the connection, while the test's thread does other things.
class HastyServer {
public:
    explicit HastyServer(QByteArray answer)
        : m_answer(std::move(answer)),
          m_listener(listenOnLoopback()),
          m_thread([this] { serve(); }) {}
    ~HastyServer() {
        ::shutdown(m_listener, SHUT_RDWR);
        m_thread.join();
        ::close(m_listener);
    }
    HastyServer(const HastyServer&) = delete;
    HastyServer& operator=(const HastyServer&) = delete;

    [[nodiscard]] QUrl url() const {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
        return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(ntohs(address.sin_port)));
    }
    [[nodiscard]] bool hasSentAll() const { return m_hasSentAll; }

private:
    static int listenOnLoopback() {
        const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        // Room for the whole answer, however slowly it is read.
        const int bufferBytes = 2 * 1024 * 1024;
        ::setsockopt(listener, SOL_SOCKET, SO_SNDBUFFORCE, &bufferBytes, sizeof bufferBytes);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::listen(listener, 1);
        return listener;
    }
    void serve() {
        const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) return;
        char bytes[4096];
        ::recv(connection, bytes, sizeof bytes, 0);
        ::send(connection, m_answer.constData(), static_cast<size_t>(m_answer.size()),
               MSG_NOSIGNAL);
        ::shutdown(connection, SHUT_WR);
        m_hasSentAll = true;
        while (::recv(connection, bytes, sizeof bytes, 0) > 0) {
        }
        ::close(connection);
    }

    const QByteArray m_answer;
    const int m_listener;
    std::atomic<bool> m_hasSentAll = false;
    std::thread m_thread;
};

/// Bodies of several buffers, the whole of which a reader has not seen when their server closes.
class CurlHttpStreamsTest : public testing::Test {
protected:
    /// Asks, and takes nothing before the server has gone.
    void readLate(const QByteArray& head, const QByteArray& body) {
        const HastyServer server(head + "\r\n\r\n" + body);
        CurlHttpStreams streams;
        const Cancellable handle = streams.get(
            {server.url(), {}}, {.onHead =
                                     [&](const HttpHead&) {
                                         while (!server.hasSentAll())
                                             std::this_thread::yield();
                                     },
                                 .onBytes = [this](QByteArrayView bytes) { m_read.append(bytes); },
                                 .onEnd = [this](const auto& outcome) { m_outcome = outcome; }});
        EXPECT_TRUE(waitUntil([this] { return m_outcome.has_value(); }));
    }
    /// Of those over which this process asks the server.
    [[nodiscard]] static int largestReceiveBuffer(const QUrl& url) {
        int largest = 0;
        forEachOpenDescriptor([&](int descriptor) {
            sockaddr_in peer{};
            socklen_t length = sizeof peer;
            ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &length);
            if (peer.sin_family != AF_INET || ntohs(peer.sin_port) != url.port()) return;
            int bytes = 0;
            length = sizeof bytes;
            ::getsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &bytes, &length);
            largest = std::max(largest, bytes);
        });
        return largest;
    }
    [[nodiscard]] std::string failure(const QUrl& url) {
        CurlHttpStreams streams;
        const Cancellable handle =
            streams.get({url, {}}, {.onHead = [](const HttpHead&) {},
                                    .onBytes = [](QByteArrayView) {},
                                    .onEnd = [this](const auto& outcome) { m_outcome = outcome; }});
        EXPECT_TRUE(waitUntil([this] { return m_outcome.has_value(); }));
        return isWhole() ? "no failure" : m_outcome->error().description.toStdString();
    }
    [[nodiscard]] bool isWhole() const { return m_outcome && m_outcome->has_value(); }

    const QByteArray m_body = QByteArray(600'000, 'x');
    QByteArray m_read;
    std::optional<tl::expected<void, TransportError>> m_outcome;
};

TEST_F(CurlHttpStreamsTest, ABodyWithALengthIsReadToItsEndAfterTheServerHasClosed) {
    readLate("HTTP/1.1 200 OK\r\nContent-Length: 600000", m_body);
    EXPECT_TRUE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(CurlHttpStreamsTest, ABodyWithoutALengthIsReadToItsEndAfterTheServerHasClosed) {
    readLate("HTTP/1.1 200 OK", m_body);
    EXPECT_TRUE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(CurlHttpStreamsTest, ABodyInChunksIsReadToItsEndAfterTheServerHasClosed) {
    readLate("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked",
             QByteArray::number(m_body.size(), 16) + "\r\n" + m_body + "\r\n0\r\n\r\n");
    EXPECT_TRUE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(CurlHttpStreamsTest, ABodyThatWasCutShortIsAFailureAfterAllThatHasCome) {
    readLate("HTTP/1.1 200 OK\r\nContent-Length: 700000", m_body);
    EXPECT_FALSE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(CurlHttpStreamsTest, ChunksThatWereCutShortAreAFailureAfterAllThatHasCome) {
    readLate("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked",
             QByteArray::number(m_body.size() + 1, 16) + "\r\n" + m_body);
    EXPECT_FALSE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(CurlHttpStreamsTest, TheSystemKeepsLittleOfWhatTheServerSends) {
    const HastyServer server("HTTP/1.1 200 OK\r\nContent-Length: 600000\r\n\r\n" + m_body);
    CurlHttpStreams streams;
    int bufferBytes = 0;
    const Cancellable handle = streams.get(
        {server.url(), {}},
        {.onHead = [&](const HttpHead&) { bufferBytes = largestReceiveBuffer(server.url()); },
         .onBytes = [](QByteArrayView) {},
         .onEnd = [this](const auto& outcome) { m_outcome = outcome; }});
    EXPECT_TRUE(waitUntil([this] { return m_outcome.has_value(); }));
    EXPECT_GT(bufferBytes, 0);
    EXPECT_LE(bufferBytes, 384 * 1024);
}

TEST_F(CurlHttpStreamsTest, AServerThatIsNotThereIsASentence) {
    const QUrl url = HastyServer("").url();
    EXPECT_EQ(failure(url),
              "The server at 127.0.0.1:" + std::to_string(url.port()) + " refused the connection.");
}

TEST_F(CurlHttpStreamsTest, AnUnknownServerIsASentence) {
    EXPECT_EQ(failure(QUrl(QStringLiteral("http://nobody.invalid/"))),
              "The server nobody.invalid was not found.");
}

TEST_F(CurlHttpStreamsTest, AnAddressWithoutAServerIsNone) {
    EXPECT_EQ(failure(QUrl(QStringLiteral("http:///model.bin"))),
              "http:///model.bin is not an address of a web server.");
}

}  // namespace
}  // namespace quietlark
