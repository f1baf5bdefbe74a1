#include <QFileInfo>
#include <QPointer>

#include "local_server/model_server_fixture.h"

namespace quietlark {

using namespace std::chrono_literals;

namespace {

using ModelServerTest = ModelServerFixture;

const std::string cutShort = "closed the connection before its answer was complete.";

}  // namespace

TEST_F(ModelServerTest, TheModelArrives) {
    serverDoes(model());
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_TRUE(isInstalled());
    EXPECT_EQ(m_downloader->progress(), 1.0);
    EXPECT_EQ(m_downloader->bytesWritten(), m_model.size());
}

TEST_F(ModelServerTest, NothingMoreIsAskedThanNeeded) {
    serverDoes(model());
    download();
    ASSERT_EQ(m_server.requests().size(), 1U);
    EXPECT_EQ(m_server.requests().back().header("Accept-Encoding"), "identity");
    EXPECT_TRUE(m_server.requests().back().header("Cookie").isNull());
}

TEST_F(ModelServerTest, NotFound) {
    serverDoes(http_reply::answer(404, "gone"));
    EXPECT_EQ(failure(download()), refusal(404));
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, AServerError) {
    serverDoes(http_reply::answer(500, "broken"));
    EXPECT_EQ(failure(download()), refusal(500));
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, AnExpiredAddressBehindARedirect) {
    serverDoes(http_reply::bytesAndSilence(head(0) + m_model.first(mebibyte)));
    start();
    ASSERT_TRUE(waitUntil([this] { return m_downloader->bytesWritten() == mebibyte; }));
    const QByteArray location = "Location: " + m_server.url().toUtf8() + "/signed\r\n";
    serverDoes(http_reply::answer(302, {}, location));
    m_server.on("/signed", http_reply::answer(403, "expired"));
    EXPECT_EQ(failure(download()), refusal(403));
    EXPECT_EQ(lastRange(), "bytes=" + QByteArray::number(receivedBytes()) + '-');
    m_server.on("/signed", model());
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerTest, ARedirectLoop) {
    const QByteArray location = "Location: " + m_server.url().toUtf8() + "/model.bin\r\n";
    serverDoes(http_reply::answer(302, {}, location));
    EXPECT_EQ(failure(download()), "The server redirected the download too many times.");
    EXPECT_EQ(m_server.requests().size(), 21U);
}

TEST_F(ModelServerTest, ARedirectWithoutLocation) {
    serverDoes(http_reply::answer(302, {}));
    EXPECT_EQ(failure(download()), refusal(302));
}

TEST_F(ModelServerTest, ARedirectToAnAddressThatIsNotForTheWeb) {
    serverDoes(http_reply::answer(302, {}, "Location: file:///etc/passwd\r\n"));
    EXPECT_EQ(failure(download()), "file:///etc/passwd is not an address of a web server.");
}

TEST_F(ModelServerTest, ARedirectWithinTheServerIsNotResolved) {
    serverDoes(http_reply::answer(302, {}, "Location: /signed\r\n"));
    EXPECT_EQ(failure(download()), "/signed is not an address of a web server.");
    EXPECT_EQ(m_server.requests().size(), 1U);
}

TEST_F(ModelServerTest, AContentLengthThatIsTooLong) {
    serverDoes(
        http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nContent-Length: 4000000\r\n\r\n" + m_model));
    EXPECT_TRUE(failure(download()).ends_with(cutShort));
    EXPECT_FALSE(isSomethingInstalled());
}

TEST_F(ModelServerTest, AContentLengthThatIsTooShort) {
    serverDoes(
        http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n" + m_model));
    EXPECT_EQ(failure(download()),
              "Install failed: What arrived is not the published model; its checksum differs.");
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, AContentLengthThatIsNoNumber) {
    m_source.sha256.reset();
    serverDoes(
        http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nContent-Length: plenty\r\n\r\n" + m_model));
    EXPECT_NE(failure(download()), "no failure");
    EXPECT_FALSE(isSomethingInstalled());
}

TEST_F(ModelServerTest, AnotherLengthThanThePublishedOne) {
    m_source.lengthBytes = m_model.size() + 1;
    serverDoes(model());
    EXPECT_TRUE(failure(download()).starts_with("Install failed: The server offers 3145745 bytes"));
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, AShortBodyIsContinued) {
    serverDoes(modelCutAt(2 * mebibyte));
    EXPECT_TRUE(failure(download()).ends_with(cutShort));
    EXPECT_FALSE(isSomethingInstalled());
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerTest, ALostConnectionCostsNothingOfWhatArrived) {
    QPointer<QTcpSocket> connection;
    serverDoes([&](QTcpSocket& socket) {
        connection = &socket;
        send(socket, mebibyte);
    });
    start();
    ASSERT_TRUE(waitUntil([this] { return m_downloader->bytesWritten() == mebibyte; }));
    http_reply::reset()(*connection);
    ASSERT_TRUE(waitUntil([this] { return m_downloader->state().kind == State::Case::failed; }));
    serverDoes(model());
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_EQ(lastRange(), "bytes=" + QByteArray::number(mebibyte) + '-');
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerTest, AnOversizeBody) {
    m_source.lengthBytes = m_model.size();
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\n\r\n" + m_model + "and more"));
    EXPECT_EQ(failure(download()),
              "Install failed: The server sent more than the 3145745 bytes of the model.");
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, AnEndlessBody) {
    m_source.lengthBytes = m_model.size();
    serverDoes(http_reply::endless());
    EXPECT_TRUE(failure(download()).starts_with("Install failed: The server sent more than"));
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, AStallLongerThanTheTimeout) {
    m_source.idleTimeout = 300ms;
    serverDoes(http_reply::bytesAndSilence(head(0) + m_model.first(mebibyte)));
    EXPECT_EQ(failure(download()), "The server did not answer in time.");
    EXPECT_FALSE(isSomethingInstalled());
    const QByteArray rest = "bytes=" + QByteArray::number(receivedBytes()) + '-';
    serverDoes(model());
    m_source.idleTimeout = 60s;
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_EQ(lastRange(), rest);
}

TEST_F(ModelServerTest, AServerThatNeverAnswers) {
    m_source.idleTimeout = 300ms;
    serverDoes(http_reply::silence());
    EXPECT_EQ(failure(download()), "The server did not answer in time.");
}

TEST_F(ModelServerTest, AResetBeforeAnyAnswer) {
    serverDoes(http_reply::reset());
    EXPECT_NE(failure(download()), "no failure");
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, AGzipEncodedAnswer) {
    serverDoes(http_reply::answer(200, m_model, "Content-Encoding: gzip\r\n"));
    EXPECT_EQ(failure(download()),
              "Install failed: The server sent the model in a coding that was not asked for "
              "(gzip).");
    EXPECT_TRUE(QDir(m_files.directory()).isEmpty());
}

TEST_F(ModelServerTest, NoContentLengthButTheRightDigest) {
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\n\r\n" + m_model));
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_EQ(m_downloader->totalBytes(), 0);
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerTest, NoContentLengthAndCutShort) {
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\n\r\n" + m_model.first(mebibyte)));
    EXPECT_NE(failure(download()), "no failure");
    EXPECT_FALSE(isSomethingInstalled());
}

TEST_F(ModelServerTest, NoContentLengthAndNoDigest) {
    m_source.sha256.reset();
    serverDoes(http_reply::bytesAndClose("HTTP/1.1 200 OK\r\n\r\n" + m_model));
    EXPECT_NE(failure(download()), "no failure");
    EXPECT_FALSE(isSomethingInstalled());
}

TEST_F(ModelServerTest, ChunksThatAreCutShort) {
    m_source.sha256.reset();
    m_source.idleTimeout = 300ms;
    serverDoes(
        http_reply::bytesAndClose("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                  "100000\r\n" +
                                  m_model.first(mebibyte) + "\r\n"));
    EXPECT_NE(failure(download()), "no failure");
    EXPECT_FALSE(isSomethingInstalled());
}

TEST_F(ModelServerTest, ADirectoryInTheModelsPlace) {
    ASSERT_TRUE(QDir().mkpath(m_files.active() + QStringLiteral("/inside")));
    serverDoes(model());
    start();
    EXPECT_TRUE(waitUntil([this] { return m_downloader->state().kind == State::Case::failed; }));
    EXPECT_TRUE(QFileInfo::exists(m_files.active() + QStringLiteral("/inside")));
    EXPECT_TRUE(m_server.requests().empty());
}

TEST_F(ModelServerTest, AResumeFileOfGarbage) {
    serverDoes(modelCutAt(2 * mebibyte));
    download();
    QFile record(m_files.resume());
    ASSERT_TRUE(record.open(QIODevice::WriteOnly));
    record.write(someBytes(5000));
    record.close();
    serverDoes(model());
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_TRUE(lastRange().isNull());
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerTest, AServerThatIgnoresTheRange) {
    serverDoes(modelCutAt(2 * mebibyte));
    download();
    serverDoes(http_reply::answer(200, m_model));
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerTest, AFileThatWasChangedMeanwhile) {
    serverDoes(http_reply::bytesAndSilence(head(0) + QByteArray(mebibyte, 'x')));
    start();
    ASSERT_TRUE(waitUntil([this] { return m_downloader->bytesWritten() == mebibyte; }));
    serverDoes(http_reply::answer(200, m_model, "ETag: \"two\"\r\n"));
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_EQ(lastRange(), "bytes=" + QByteArray::number(mebibyte) + '-');
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerTest, ARangeThatTheServerNoLongerHas) {
    serverDoes(http_reply::bytesAndSilence(head(0) + m_model.first(mebibyte)));
    start();
    ASSERT_TRUE(waitUntil([this] { return m_downloader->bytesWritten() == mebibyte; }));
    serverDoes(
        http_reply::first(http_reply::answer(416, {}, "Content-Range: bytes */5\r\n"), model()));
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_TRUE(lastRange().isNull());
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerTest, CancellingWhileBytesArriveIsContinued) {
    serverDoes(http_reply::bytesAndSilence(head(0) + m_model.first(mebibyte)));
    start();
    ASSERT_TRUE(waitUntil([this] { return m_downloader->bytesWritten() == mebibyte; }));
    m_downloader->cancel();
    EXPECT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
    serverDoes(model());
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_EQ(lastRange(), "bytes=" + QByteArray::number(mebibyte) + '-');
}

TEST_F(ModelServerTest, StoppedItBringsNothingBackOfWhatIsThenRemoved) {
    serverDoes(http_reply::bytesAndSilence(head(0) + m_model.first(mebibyte)));
    start();
    ASSERT_TRUE(waitUntil([this] { return m_downloader->bytesWritten() == mebibyte; }));
    bool isStill = false;
    m_downloader->stop([&isStill] { isStill = true; });
    EXPECT_FALSE(isStill);
    ASSERT_TRUE(waitUntil([&isStill] { return isStill; }));
    EXPECT_TRUE(QFile::exists(m_files.resume()));
    QDir(m_files.directory()).removeRecursively();
    m_downloader.reset();
    EXPECT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
    EXPECT_FALSE(QFile::exists(m_files.directory()));
}

}  // namespace quietlark
