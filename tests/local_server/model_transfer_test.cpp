#include <QFileInfo>

#include "local_server/model_download_fixture.h"

namespace quietlark {

namespace {

using ModelTransferTest = ModelDownloadFixture;

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
    m_source.sha256 = digestOfTenDigits;
    leave("01234");
    start();
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}, {"ETag", "\"one\""}});
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
    m_source.sha256 = digestOfTenDigits;
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
    m_source.sha256 = digestOfTenDigits;
    start();
    serverSays(200);
    serverSends("0123456789");
    EXPECT_EQ(m_downloader->totalBytes(), 0);
    EXPECT_EQ(m_downloader->progress(), std::nullopt);
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelTransferTest, AnotherLengthThanThePublishedOneIsRefusedAtOnce) {
    m_source.lengthBytes = 11;
    start();
    serverOffersTenBytes();
    EXPECT_EQ(message(), "Install failed: The server offers 10 bytes, but the model has 11.");
    EXPECT_TRUE(filesThere().isEmpty());
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
