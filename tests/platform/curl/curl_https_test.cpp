#include <optional>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "peers/child_process.h"
#include "platform/curl/curl_http_streams.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// OpenSSL's server, with a certificate of its own.
class CurlHttpsTest : public testing::Test {
protected:
    CurlHttpsTest() {
        EXPECT_EQ(QProcess::execute(QStringLiteral("sh"),
                                    {QStringLiteral("-c"),
                                     QStringLiteral("openssl req -x509 -newkey rsa:2048 -nodes "
                                                    "-days 1 -subj /CN=localhost -addext "
                                                    "subjectAltName=IP:127.0.0.1 "
                                                    "-keyout \"$0/key\" -out \"$0/certificate\" "
                                                    "2>\"$0/messages\""),
                                     m_folder.path()}),
                  0);
    }
    ~CurlHttpsTest() override { qunsetenv("SSL_CERT_FILE"); }

    void trustTheServer() { qputenv("SSL_CERT_FILE", file("certificate").toUtf8()); }
    /// Asks for an answer that stands in a file.
    void ask(const QByteArray& answer) {
        QFile page(file("answer"));
        ASSERT_TRUE(page.open(QIODevice::WriteOnly));
        page.write(answer);
        page.close();
        m_server.emplace(
            QStringLiteral("env"),
            QStringList{QStringLiteral("-C"), m_folder.path(), QStringLiteral("openssl"),
                        QStringLiteral("s_server"), QStringLiteral("-HTTP"),
                        QStringLiteral("-accept"), QStringLiteral("127.0.0.1:0"),
                        QStringLiteral("-key"), QStringLiteral("key"), QStringLiteral("-cert"),
                        QStringLiteral("certificate")});
        QByteArray line = m_server->readLine();
        while (!line.isNull() && !line.startsWith("ACCEPT "))
            line = m_server->readLine();
        ASSERT_FALSE(line.isNull()) << "no server";
        const QString address = QString::fromLatin1(line.sliced(7).trimmed());
        m_handle =
            m_streams.get({QUrl(QStringLiteral("https://%1/answer").arg(address)), {}},
                          {.onHead = [this](const HttpHead& head) { m_status = head.status; },
                           .onBytes = [this](QByteArrayView bytes) { m_read.append(bytes); },
                           .onEnd = [this](const auto& outcome) { m_outcome = outcome; }});
        ASSERT_TRUE(waitUntil([this] { return m_outcome.has_value(); }));
    }
    [[nodiscard]] QString file(const char* name) const {
        return m_folder.filePath(QString::fromLatin1(name));
    }

    QTemporaryDir m_folder;
    std::optional<ChildProcess> m_server;
    CurlHttpStreams m_streams;
    Cancellable m_handle;
    int m_status = 0;
    QByteArray m_read;
    std::optional<tl::expected<void, TransportError>> m_outcome;
};

TEST_F(CurlHttpsTest, ABodyArrivesOverASecureConnection) {
    const QByteArray body(600'000, 'x');
    trustTheServer();
    ask("HTTP/1.1 200 OK\r\nContent-Length: 600000\r\n\r\n" + body);
    EXPECT_TRUE(*m_outcome) << m_outcome->error().description.toStdString();
    EXPECT_EQ(m_status, 200);
    EXPECT_EQ(m_read, body);
}

TEST_F(CurlHttpsTest, ABodyThatIsCutShortIsAFailureAfterWhatHasCome) {
    trustTheServer();
    ask("HTTP/1.1 200 OK\r\nContent-Length: 600000\r\n\r\nhalf");
    ASSERT_FALSE(*m_outcome);
    EXPECT_TRUE(m_outcome->error().description.endsWith(
        QStringLiteral("closed the connection before its answer was complete.")))
        << m_outcome->error().description.toStdString();
    EXPECT_EQ(m_read, "half");
}

TEST_F(CurlHttpsTest, ACertificateThatNobodyVouchesForIsRefused) {
    ask("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    ASSERT_FALSE(*m_outcome);
    EXPECT_TRUE(m_outcome->error().description.startsWith(
        QStringLiteral("No secure connection to 127.0.0.1:")))
        << m_outcome->error().description.toStdString();
    EXPECT_EQ(m_status, 0);
}

}  // namespace
}  // namespace quietlark
