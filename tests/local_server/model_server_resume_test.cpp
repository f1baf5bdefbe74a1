#include "local_server/model_server_fixture.h"

namespace quietlark {

namespace {

/// Faults while a download is continued, which must cost nothing of what is here.
using ModelServerResumeTest = ModelServerFixture;

}  // namespace

TEST_F(ModelServerResumeTest, ConnectionsResetAtRandomOffsets) {
    const auto seed = std::random_device()();
    RecordProperty("seed", static_cast<int>(seed));
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    m_model = someBytes(12 * mebibyte + 17);
    m_source.sha256 = sha256(m_model);
    qint64 received = 0;
    int attempts = 0;
    while (received < m_model.size() - mebibyte && attempts < 100) {
        const qint64 more = std::uniform_int_distribution<qint64>(1, 3 * mebibyte)(random);
        serverDoes(modelResetAt(std::min<qint64>(received + more, m_model.size() - 1)));
        ++attempts;
        EXPECT_NE(failure(download()), "no failure");
        EXPECT_FALSE(isSomethingInstalled());
        const QByteArray asked =
            received == 0 ? QByteArray() : "bytes=" + QByteArray::number(received) + '-';
        EXPECT_EQ(lastRange(), asked);
        received = receivedBytes();
        EXPECT_LE(m_sentUpTo - received, mebibyte);
    }
    serverDoes(model());
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_EQ(lastRange(), "bytes=" + QByteArray::number(received) + '-');
    EXPECT_TRUE(isInstalled());
}

TEST_F(ModelServerResumeTest, NotFound) {
    receiveTwoMebibytes();
    serverDoes(http_reply::answer(404, "gone"));
    EXPECT_EQ(failure(download()), refusal(404));
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerResumeTest, AServerError) {
    receiveTwoMebibytes();
    serverDoes(http_reply::answer(500, "broken"));
    EXPECT_EQ(failure(download()), refusal(500));
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerResumeTest, AGzipEncodedRest) {
    receiveTwoMebibytes();
    serverDoes(http_reply::answer(206, m_model.sliced(2 * mebibyte),
                                  "Content-Encoding: gzip\r\n"
                                  "Content-Range: bytes 2097152-3145744/3145745\r\n"));
    EXPECT_EQ(failure(download()),
              "Install failed: The server sent the model in a coding that was not asked for "
              "(gzip).");
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerResumeTest, ARedirectLoop) {
    receiveTwoMebibytes();
    const QByteArray location = "Location: " + m_server.url().toUtf8() + "/model.bin\r\n";
    serverDoes(http_reply::answer(302, {}, location));
    EXPECT_EQ(failure(download()), "The server redirected the download too many times.");
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerResumeTest, ARedirectWithoutLocation) {
    receiveTwoMebibytes();
    serverDoes(http_reply::answer(302, {}));
    EXPECT_EQ(failure(download()), refusal(302));
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerResumeTest, AServerThatNeverAnswers) {
    receiveTwoMebibytes();
    m_source.idleTimeout = std::chrono::milliseconds(300);
    serverDoes(http_reply::silence());
    EXPECT_EQ(failure(download()), "The server did not answer in time.");
    m_source.idleTimeout = std::chrono::seconds(60);
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerResumeTest, AConnectionThatIsResetBeforeAnyAnswer) {
    receiveTwoMebibytes();
    serverDoes(http_reply::reset());
    EXPECT_NE(failure(download()), "no failure");
    expectToContinueFromTwoMebibytes();
}

TEST_F(ModelServerResumeTest, ARestThatIsShorterThanItsLength) {
    receiveTwoMebibytes();
    serverDoes(modelCutAt(2 * mebibyte + 1000));
    EXPECT_NE(failure(download()), "no failure");
    serverDoes(model());
    EXPECT_EQ(download().kind, State::Case::ready);
    EXPECT_EQ(lastRange(), "bytes=2098152-");
    EXPECT_TRUE(isInstalled());
}

}  // namespace quietlark
