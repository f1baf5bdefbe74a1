#include <QFileInfo>

#include "local_server/model_download_fixture.h"
#include "platform/directory_lock.h"

namespace quietlark {

using namespace std::chrono_literals;

namespace {

using ModelTransferTest = ModelDownloadFixture;

// Of "0123456789".
const QByteArray digest =
    QByteArrayLiteral("84d89877f0d4041efb6bf91a16f0248f2fd573e6af05c19f96bedb9f882f7882");

}  // namespace

TEST_F(ModelTransferTest, WhatArrivesBecomesTheModel) {
    start();
    serverOffersTenBytes();
    serverSends("01234");
    EXPECT_EQ(m_downloader->progress(), 0.5);
    serverSends("56789");
    EXPECT_EQ(kind(), Case::downloading);
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
    EXPECT_EQ(read(m_files.active()), "0123456789");
    EXPECT_EQ(read(m_files.name()), "ggml-large-v3-turbo.bin\n");
    EXPECT_EQ(filesThere(),
              (QStringList{QStringLiteral("active.bin"), QStringLiteral("active.bin.name")}));
}

TEST_F(ModelTransferTest, ModelAndNameAreReadableByEverybody) {
    start();
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    for (const QString& path : {m_files.active(), m_files.name()}) {
        const auto readOthers = QFileDevice::ReadOther | QFileDevice::ReadGroup;
        EXPECT_TRUE(QFileInfo(path).permissions().testFlags(readOthers));
        EXPECT_FALSE(QFileInfo(path).permissions().testFlag(QFileDevice::WriteOther));
    }
}

TEST_F(ModelTransferTest, ANotFoundEndsInTheInstallMessageAndTouchesNoFile) {
    start();
    serverSays(404);
    EXPECT_EQ(kind(), Case::failed);
    EXPECT_EQ(message(), "Install failed: HTTP 404 from " + m_source.url.toString().toStdString());
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferTest, ANotFoundLeavesWhatWasReceivedEarlier) {
    leave("01234");
    start();
    serverSays(404);
    EXPECT_EQ(read(m_files.received()), "01234");
    EXPECT_FALSE(read(m_files.resume()).isNull());
}

TEST_F(ModelTransferTest, AValidResumeFileIsContinuedFromAndGoneAfterwards) {
    leave("01234");
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=5-");
    EXPECT_EQ(m_network.sent("If-Range"), "\"one\"");
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}, {"ETag", "\"one\""}});
    serverSends("56789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
    EXPECT_FALSE(QFileInfo::exists(m_files.resume()));
    EXPECT_EQ(read(m_files.name()), "ggml-large-v3-turbo.bin\n");
}

TEST_F(ModelTransferTest, TheDigestCoversWhatWasReceivedEarlier) {
    m_source.sha256 = digest;
    leave("01234");
    start();
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}});
    serverSends("56789");
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelTransferTest, CancellingSavesAllThatWasReceived) {
    start();
    serverOffersTenBytes();
    serverSends("0123");
    m_downloader->cancel();
    m_scheduler.runPosted();
    EXPECT_FALSE(m_network.isOpen());
    EXPECT_EQ(read(m_files.received()), "0123");
    EXPECT_EQ(ResumeData::read(m_files.resume())->syncedBytes, 4);
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=4-");
}

TEST_F(ModelTransferTest, TheEndOfTheDownloaderSavesAllThatWasReceived) {
    start();
    serverOffersTenBytes();
    serverSends("0123");
    m_downloader.reset();
    m_scheduler.runPosted();
    EXPECT_EQ(ResumeData::read(m_files.resume())->syncedBytes, 4);
}

TEST_F(ModelTransferTest, AnErrorItselfSavesNothing) {
    start();
    serverOffersTenBytes();
    const QByteArray before = read(m_files.resume());
    serverSends("0123");
    connectionBreaks();
    EXPECT_EQ(message(), "The connection broke.");
    EXPECT_EQ(read(m_files.resume()), before);
}

TEST_F(ModelTransferTest, ALostConnectionIsContinuedFromItsLastByte) {
    start();
    serverOffersTenBytes();
    serverSends("0123");
    connectionBreaks();
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=4-");
}

TEST_F(ModelTransferTest, WithoutAValidatorNothingIsKept) {
    start();
    serverSays(200, {{"Content-Length", "10"}});
    serverSends("0123");
    m_downloader->cancel();
    m_scheduler.runPosted();
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferTest, AServerThatIgnoresTheRangeIsTakenFromTheStart) {
    leave("xxxxx");
    start();
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferTest, AnotherRangeIsAskedForAnewFromTheStart) {
    leave("01234");
    start();
    serverSays(206, {{"Content-Range", "bytes 4-9/10"}});
    ASSERT_EQ(m_network.requests().size(), 2U);
    EXPECT_TRUE(m_network.sent("Range").isNull());
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferTest, ARangeBeyondTheEndStartsAfresh) {
    leave("01234");
    start();
    serverSays(416, {{"Content-Range", "bytes */3"}});
    EXPECT_TRUE(m_network.sent("Range").isNull());
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferTest, AChangedFileIsNotJoinedToTheOldOne) {
    leave("01234");
    start();
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}, {"ETag", "\"two\""}});
    EXPECT_TRUE(m_network.sent("Range").isNull());
}

TEST_F(ModelTransferTest, AWrongDigestFailsAndLeavesTheOldModel) {
    m_source.sha256 = QByteArray(64, '0');
    start();
    write(m_files.active(), "old");
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(message(),
              "Install failed: What arrived is not the published model; its checksum differs.");
    EXPECT_EQ(read(m_files.active()), "old");
    EXPECT_EQ(filesThere(), QStringList{QStringLiteral("active.bin")});
}

TEST_F(ModelTransferTest, TheRightDigestReplacesTheOldModel) {
    m_source.sha256 = digest;
    start();
    write(m_files.active(), "old");
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferTest, FewerBytesThanPromisedAreNotInstalled) {
    start();
    serverOffersTenBytes();
    serverSends("01234");
    serverIsDone();
    EXPECT_EQ(message(), "Install failed: The server sent 5 bytes, but the model has 10.");
    EXPECT_TRUE(read(m_files.active()).isNull());
}

TEST_F(ModelTransferTest, MoreBytesThanPromisedAreNotInstalled) {
    start();
    serverOffersTenBytes();
    serverSends("0123456789a");
    EXPECT_EQ(message(), "Install failed: The server sent more than the 10 bytes of the model.");
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferTest, AnEmptyFileIsNoModel) {
    start();
    serverSays(200, {{"Content-Length", "0"}});
    serverIsDone();
    EXPECT_EQ(message(), "Install failed: The server sent an empty file.");
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferTest, AnUnknownSizeLeavesTotalAndProgressUnknown) {
    m_source.sha256 = digest;
    start();
    serverSays(200);
    serverSends("0123456789");
    EXPECT_EQ(m_downloader->totalBytes(), 0);
    EXPECT_EQ(m_downloader->progress(), std::nullopt);
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelTransferTest, ARedirectIsFollowedWithTheHeadersOfTheFirstRequest) {
    leave("01234");
    start();
    serverSays(302, {{"Location", "https://mirror.example/signed?x=%20y"}});
    EXPECT_EQ(m_network.requests().back().url.toString(QUrl::FullyEncoded),
              QStringLiteral("https://mirror.example/signed?x=%20y"));
    EXPECT_EQ(m_network.requests().back().headers, m_network.requests().front().headers);
    serverSays(307, {{"Location", "https://third.example/"}});
    EXPECT_EQ(m_network.sent("Range"), "bytes=5-");
}

TEST_F(ModelTransferTest, ARefusalAfterARedirectNamesTheModelsAddress) {
    start();
    serverSays(302, {{"Location", "https://mirror.example/expired"}});
    serverSays(403);
    EXPECT_EQ(message(), "Install failed: HTTP 403 from " + m_source.url.toString().toStdString());
}

TEST_F(ModelTransferTest, ARedirectWithoutALocationGoesWhereTheSystemProposes) {
    start();
    const HttpStreamRequest proposal{QUrl(QStringLiteral("https://there.example/")), {{"A", "b"}}};
    m_network.head({302, {}, proposal});
    EXPECT_EQ(m_network.requests().back(), proposal);
}

TEST_F(ModelTransferTest, ARedirectToNowhereIsTheAnswer) {
    start();
    serverSays(302);
    EXPECT_EQ(message(), "Install failed: HTTP 302 from " + m_source.url.toString().toStdString());
}

TEST_F(ModelTransferTest, ARedirectLoopEnds) {
    start();
    while (m_network.isOpen() && m_network.requests().size() < 100)
        serverSays(302, {{"Location", "https://models.example/again"}});
    EXPECT_EQ(m_network.requests().size(), 21U);
    EXPECT_EQ(message(), "The server redirected the download too many times.");
}

TEST_F(ModelTransferTest, AServerThatSaysNothingForAMinuteIsGivenUp) {
    start();
    advance(59'999ms);
    EXPECT_EQ(kind(), Case::downloading);
    advance(1ms);
    EXPECT_EQ(message(), "The server did not answer in time.");
    EXPECT_FALSE(m_network.isOpen());
}

TEST_F(ModelTransferTest, EveryByteStartsTheMinuteAnew) {
    start();
    serverOffersTenBytes();
    advance(59s);
    serverSends("0");
    advance(59s);
    EXPECT_EQ(kind(), Case::downloading);
    advance(1s);
    EXPECT_EQ(kind(), Case::failed);
}

TEST_F(ModelTransferTest, TwoHoursAreEnoughForOneAttempt) {
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

TEST_F(ModelTransferTest, LackOfSpaceIsReportedBeforeAnythingIsAsked) {
    m_source.lengthBytes = qint64{1} << 60;
    start();
    EXPECT_TRUE(message().starts_with("There is not enough free space for the model: "))
        << message();
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferTest, LackOfSpaceIsReportedOnceTheServerSaysTheLength) {
    start();
    serverSays(200, {{"Content-Length", "1152921504606846976"}});
    EXPECT_TRUE(message().starts_with("There is not enough free space for the model: "))
        << message();
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferTest, AnotherLengthThanThePublishedOneIsRefusedAtOnce) {
    m_source.lengthBytes = 11;
    start();
    serverOffersTenBytes();
    EXPECT_EQ(message(), "Install failed: The server offers 10 bytes, but the model has 11.");
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferTest, OnlyOneProcessDownloads) {
    ASSERT_TRUE(m_files.ensureDirectory());
    const auto other = DirectoryLock::tryLock(m_files.directory());
    start();
    EXPECT_EQ(message(), "The model is being downloaded by another Quietlark already.");
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferTest, AnAttemptThatEndedLeavesTheDirectoryToOthers) {
    start();
    serverSays(500);
    EXPECT_TRUE(DirectoryLock::tryLock(m_files.directory()));
}

TEST_F(ModelTransferTest, ADirectoryInTheModelsPlaceIsReportedAndLeft) {
    ASSERT_TRUE(QDir().mkpath(m_files.active()));
    start();
    EXPECT_EQ(message(), "Install failed: " + m_files.active().toStdString() + " is a directory.");
    EXPECT_TRUE(QFileInfo(m_files.active()).isDir());
}

TEST_F(ModelTransferTest, AFailedLastStepLeavesTheModelInThePartialFile) {
    start();
    ASSERT_TRUE(QDir().mkpath(m_files.active()));
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(message(), "Install failed: Is a directory");
    EXPECT_EQ(read(m_files.partial()), "0123456789");
}

TEST_F(ModelTransferTest, AnInstallThatWasBrokenOffIsFinishedWithoutTheNetwork) {
    m_source.sha256 = digest;
    leave("0123456789");
    ASSERT_TRUE(QFile::rename(m_files.received(), m_files.partial()));
    start();
    EXPECT_EQ(kind(), Case::ready);
    EXPECT_EQ(read(m_files.active()), "0123456789");
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferTest, ALeftoverPartialFileMakesRoom) {
    write(m_files.partial(), "leftover");
    start();
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
    EXPECT_FALSE(QFileInfo::exists(m_files.partial()));
}

TEST_F(ModelTransferTest, AResumeFileOfGarbageStartsAfresh) {
    leave("01234");
    write(m_files.resume(), QByteArray("\0{garbage", 9));
    start();
    EXPECT_TRUE(m_network.sent("Range").isNull());
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelTransferTest, ADownloadFromAnotherAddressIsNotContinued) {
    leave("01234");
    m_source.url = QUrl(QStringLiteral("https://mirror.example/model.bin"));
    start();
    EXPECT_TRUE(m_network.sent("Range").isNull());
}

TEST_F(ModelTransferTest, AfterAPowerCutOnlyWhatWasSyncedIsContinued) {
    leave("01234");
    const ResumeData data{m_source.url.toString(), "\"one\"", 10, 3, QStringLiteral("earlier")};
    write(m_files.resume(), data.toJson());
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=3-");
    serverSays(206, {{"Content-Range", "bytes 3-9/10"}});
    serverSends("3456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferTest, OnlyBytesAsTheyAreAreAskedFor) {
    start();
    EXPECT_EQ(m_network.sent("Accept-Encoding"), "identity");
    serverSays(200, {{"Content-Length", "10"}, {"Content-Encoding", "gzip"}});
    EXPECT_EQ(message(),
              "Install failed: The server sent the model in a coding that was not asked "
              "for (gzip).");
}

TEST_F(ModelTransferTest, NewsOfACancelledAttemptReachNobody) {
    start();
    serverOffersTenBytes();
    m_network.bytes("0123");
    m_downloader->cancel();
    m_scheduler.runPosted();
    EXPECT_EQ(m_downloader->bytesWritten(), 0);
}

}  // namespace quietlark
