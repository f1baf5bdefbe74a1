#include <QFileInfo>

#include "local_server/model_download_fixture.h"
#include "platform/directory_lock.h"

namespace quietlark {

namespace {

using ModelTransferDiskTest = ModelDownloadFixture;
}  // namespace

TEST_F(ModelTransferDiskTest, LackOfSpaceIsReportedBeforeAnythingIsAsked) {
    m_source.lengthBytes = qint64{1} << 60;
    start();
    EXPECT_TRUE(message().starts_with("There is not enough free space for the model: "))
        << message();
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferDiskTest, LackOfSpaceIsReportedOnceTheServerSaysTheLength) {
    start();
    serverSays(200, {{"Content-Length", "1152921504606846976"}});
    EXPECT_TRUE(message().starts_with("There is not enough free space for the model: "))
        << message();
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferDiskTest, OnlyOneProcessDownloads) {
    ASSERT_TRUE(m_files.ensureDirectory());
    const auto other = DirectoryLock::tryLock(m_files.directory());
    start();
    EXPECT_EQ(message(), "The model is being downloaded by another Quietlark already.");
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferDiskTest, AnAttemptThatEndedLeavesTheDirectoryToOthers) {
    start();
    serverSays(500);
    EXPECT_TRUE(DirectoryLock::tryLock(m_files.directory()));
}

TEST_F(ModelTransferDiskTest, ADirectoryInTheModelsPlaceIsReportedAndLeft) {
    ASSERT_TRUE(QDir().mkpath(m_files.active()));
    start();
    EXPECT_EQ(message(), "Install failed: " + m_files.active().toStdString() + " is a directory.");
    EXPECT_TRUE(QFileInfo(m_files.active()).isDir());
}

TEST_F(ModelTransferDiskTest, AFailedLastStepLeavesTheModelInThePartialFile) {
    start();
    ASSERT_TRUE(QDir().mkpath(m_files.active()));
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(message(), "Install failed: Is a directory");
    EXPECT_EQ(read(m_files.partial()), "0123456789");
}

TEST_F(ModelTransferDiskTest, AnInstallThatWasBrokenOffIsFinishedWithoutTheNetwork) {
    m_source.sha256 = digestOfTenDigits;
    leave("0123456789");
    ASSERT_TRUE(QFile::rename(m_files.received(), m_files.partial()));
    start();
    EXPECT_EQ(kind(), Case::ready);
    EXPECT_EQ(read(m_files.active()), "0123456789");
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferDiskTest, ALeftoverPartialFileMakesRoom) {
    write(m_files.partial(), "leftover");
    start();
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
    EXPECT_FALSE(QFileInfo::exists(m_files.partial()));
}

TEST_F(ModelTransferDiskTest, AResumeFileOfGarbageStartsAfresh) {
    leave("01234");
    write(m_files.resume(), QByteArray("\0{garbage", 9));
    start();
    EXPECT_TRUE(m_network.sent("Range").isNull());
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelTransferDiskTest, ADownloadFromAnotherAddressIsNotContinued) {
    leave("01234");
    m_source.url = QUrl(QStringLiteral("https://mirror.example/model.bin"));
    start();
    EXPECT_TRUE(m_network.sent("Range").isNull());
}

TEST_F(ModelTransferDiskTest, AfterAPowerCutOnlyWhatWasSyncedIsContinued) {
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

}  // namespace quietlark
