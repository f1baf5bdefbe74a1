#include "platform/qt/qt_http_streams.h"

#include <atomic>
#include <optional>
#include <thread>

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

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
class QtHttpStreamsTest : public testing::Test {
protected:
    /// Asks, and takes nothing before the server has gone.
    void readLate(const QByteArray& head, const QByteArray& body) {
        const HastyServer server(head + "\r\n\r\n" + body);
        QtHttpStreams streams;
        const Cancellable handle = streams.get(
            {server.url(), {}}, {.onHead =
                                     [&](const HttpHead&) {
                                         while (!server.hasSentAll())
                                             std::this_thread::yield();
                                     },
                                 .onBytes = [this](const QByteArray& bytes) { m_read += bytes; },
                                 .onEnd = [this](const auto& outcome) { m_outcome = outcome; }});
        EXPECT_TRUE(waitUntil([this] { return m_outcome.has_value(); }));
    }
    [[nodiscard]] bool isWhole() const { return m_outcome && m_outcome->has_value(); }

    const QByteArray m_body = QByteArray(600'000, 'x');
    QByteArray m_read;
    std::optional<tl::expected<void, TransportError>> m_outcome;
};

TEST_F(QtHttpStreamsTest, ABodyWithALengthIsReadToItsEndAfterTheServerHasClosed) {
    readLate("HTTP/1.1 200 OK\r\nContent-Length: 600000", m_body);
    EXPECT_TRUE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(QtHttpStreamsTest, ABodyWithoutALengthIsReadToItsEndAfterTheServerHasClosed) {
    readLate("HTTP/1.1 200 OK", m_body);
    EXPECT_TRUE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(QtHttpStreamsTest, ABodyInChunksIsReadToItsEndAfterTheServerHasClosed) {
    readLate("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked",
             QByteArray::number(m_body.size(), 16) + "\r\n" + m_body + "\r\n0\r\n\r\n");
    EXPECT_TRUE(isWhole());
    EXPECT_EQ(m_read, m_body);
}

TEST_F(QtHttpStreamsTest, ABodyThatWasCutShortLosesLittleOfWhatHasArrived) {
    readLate("HTTP/1.1 200 OK\r\nContent-Length: 700000", m_body);
    EXPECT_FALSE(isWhole());
    EXPECT_GE(m_read.size(), m_body.size() - 512 * 1024);
    EXPECT_TRUE(m_body.startsWith(m_read));
}

}  // namespace
}  // namespace quietlark
