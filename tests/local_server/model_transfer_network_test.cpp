#include "local_server/model_download_fixture.h"

namespace quietlark {

using namespace std::chrono_literals;

namespace {

using ModelTransferNetworkTest = ModelDownloadFixture;
}  // namespace

TEST_F(ModelTransferNetworkTest, AServerThatIgnoresTheRangeIsTakenFromTheStart) {
    leave("yyyyy");
    start();
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferNetworkTest, AnotherRangeIsAskedForAnewFromTheStart) {
    leave("01234");
    start();
    serverSays(206, {{"Content-Range", "bytes 4-9/10"}, {"ETag", "\"one\""}});
    ASSERT_EQ(m_network.requests().size(), 2U);
    EXPECT_TRUE(m_network.sent("Range").isNull());
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferNetworkTest, WhatIsHereIsProgressOnceTheServerGoesOnFromThere) {
    leave("01234");
    start();
    EXPECT_EQ(m_downloader->progress(), std::nullopt);
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}, {"ETag", "\"one\""}});
    EXPECT_EQ(m_downloader->progress(), 0.5);
}

TEST_F(ModelTransferNetworkTest, ADownloadThatStartsAfreshShowsItsProgressFromTheStart) {
    leave("01234");
    start();
    serverSays(200, {{"Content-Length", "8"}, {"ETag", "\"two\""}});
    serverSends("01");
    EXPECT_EQ(m_downloader->progress(), 0.25);
    EXPECT_EQ(m_downloader->totalBytes(), 8);
}

TEST_F(ModelTransferNetworkTest, ARangeBeyondTheEndStartsAfresh) {
    leave("01234");
    start();
    serverSays(416, {{"Content-Range", "bytes */3"}});
    EXPECT_EQ(m_downloader->progress(), std::nullopt);
    EXPECT_TRUE(m_network.sent("Range").isNull());
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferNetworkTest, AChangedFileIsNotJoinedToTheOldOne) {
    leave("01234");
    start();
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}, {"ETag", "\"two\""}});
    EXPECT_TRUE(m_network.sent("Range").isNull());
}

TEST_F(ModelTransferNetworkTest, ARedirectIsFollowedWithTheHeadersOfTheFirstRequest) {
    leave("01234");
    start();
    serverSays(302, {{"Location", "https://mirror.example/signed?x=%20y"}});
    EXPECT_EQ(m_network.requests().back().url.toString(QUrl::FullyEncoded),
              QStringLiteral("https://mirror.example/signed?x=%20y"));
    EXPECT_EQ(m_network.requests().back().headers, m_network.requests().front().headers);
    serverSays(307, {{"Location", "https://third.example/"}});
    EXPECT_EQ(m_network.sent("Range"), "bytes=5-");
}

TEST_F(ModelTransferNetworkTest, ARefusalAfterARedirectNamesTheModelsAddress) {
    start();
    serverSays(302, {{"Location", "https://mirror.example/expired"}});
    serverSays(403);
    EXPECT_EQ(message(), "Install failed: HTTP 403 from " + m_source.url.toString().toStdString());
}

TEST_F(ModelTransferNetworkTest, ARedirectWithoutALocationGoesWhereTheSystemProposes) {
    start();
    const HttpStreamRequest proposal{QUrl(QStringLiteral("https://there.example/")), {{"A", "b"}}};
    m_network.head({302, {}, proposal});
    EXPECT_EQ(m_network.requests().back(), proposal);
}

TEST_F(ModelTransferNetworkTest, ARedirectToNowhereIsTheAnswer) {
    start();
    serverSays(302);
    EXPECT_EQ(message(), "Install failed: HTTP 302 from " + m_source.url.toString().toStdString());
}

TEST_F(ModelTransferNetworkTest, ARedirectLoopEnds) {
    start();
    while (m_network.isOpen() && m_network.requests().size() < 100)
        serverSays(302, {{"Location", "https://models.example/again"}});
    EXPECT_EQ(m_network.requests().size(), 21U);
    EXPECT_EQ(message(), "The server redirected the download too many times.");
}

TEST_F(ModelTransferNetworkTest, AServerThatSaysNothingForAMinuteIsGivenUp) {
    start();
    advance(59'999ms);
    EXPECT_EQ(kind(), Case::downloading);
    advance(1ms);
    EXPECT_EQ(message(), "The server did not answer in time.");
    EXPECT_FALSE(m_network.isOpen());
}

TEST_F(ModelTransferNetworkTest, EveryByteStartsTheMinuteAnew) {
    start();
    serverOffersTenBytes();
    advance(59s);
    serverSends("0");
    advance(59s);
    EXPECT_EQ(kind(), Case::downloading);
    advance(1s);
    EXPECT_EQ(kind(), Case::failed);
}

TEST_F(ModelTransferNetworkTest, TwoHoursAreEnoughForOneAttempt) {
    start();
    serverSays(200, {{"Content-Length", "1000"}, {"ETag", "\"one\""}});
    for (int halfMinute = 1; halfMinute < 240; ++halfMinute) {
        advance(30s);
        serverSends("x");
    }
    EXPECT_EQ(kind(), Case::downloading);
    advance(30s);
    EXPECT_EQ(message(), "The download took too long.");
    EXPECT_EQ(read(m_files.received()).size(), 239);
}

TEST_F(ModelTransferNetworkTest, OnlyBytesAsTheyAreAreAskedFor) {
    start();
    EXPECT_EQ(m_network.sent("Accept-Encoding"), "identity");
    serverSays(200, {{"Content-Length", "10"}, {"Content-Encoding", "gzip"}});
    EXPECT_EQ(message(),
              "Install failed: The server sent the model in a coding that was not asked "
              "for (gzip).");
}

}  // namespace quietlark
