#include <QFileInfo>

#include "local_server/model_download_fixture.h"
#include "platform/directory_lock.h"
#include "support/wait.h"

namespace quietlark {

namespace {

constexpr qint64 exbibyte = qint64{1} << 60;

class ModelTransferDiskTest : public ModelDownloadFixture {
protected:
    /// What an earlier attempt would have left, of so many bytes by its own record.
    void leave(const QByteArray& received, qint64 totalBytes) {
        ModelDownloadFixture::leave(received);
        const ResumeData data{m_source.address(), "\"one\"", totalBytes, received.size(),
                              bootSession()};
        write(m_files.resume(), data.toJson());
    }
    using ModelDownloadFixture::leave;

    [[nodiscard]] bool lacksSpace() const {
        return message().starts_with("There is not enough free space for the model: ");
    }
    [[nodiscard]] QString leftover() const { return m_files.resume() + QStringLiteral(".new"); }
};

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
    serverSays(206, {{"Content-Range", "bytes 3-9/10"}, {"ETag", "\"one\""}});
    serverSends("3456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferDiskTest, ARecordThatCallsAPartTheWholeIsConfirmedByTheServer) {
    leave("012", 3);
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=2-");
    serverSays(206, {{"Content-Range", "bytes 2-9/10"}, {"ETag", "\"one\""}});
    EXPECT_TRUE(m_network.sent("Range").isNull());
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferDiskTest, AWholeModelWithoutADigestNeedsOneMoreByteFromTheServer) {
    leave("0123456789");
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=9-");
    serverSays(206, {{"Content-Range", "bytes 9-9/10"}, {"ETag", "\"one\""}});
    serverSends("9");
    serverIsDone();
    EXPECT_EQ(read(m_files.active()), "0123456789");
}

TEST_F(ModelTransferDiskTest, ARecordOfAnotherLengthThanThePublishedOneIsDropped) {
    m_source.lengthBytes = 20;
    leave("01234", 10);
    start();
    EXPECT_TRUE(m_network.sent("Range").isNull());
    EXPECT_TRUE(filesThere().isEmpty());
}

TEST_F(ModelTransferDiskTest, ARecordsLengthIsConfirmedBeforeSpaceIsFoundLacking) {
    leave("01234", exbibyte);
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=5-");
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}, {"ETag", "\"one\""}});
    EXPECT_TRUE(m_network.sent("Range").isNull());
    serverOffersTenBytes();
    serverSends("0123456789");
    serverIsDone();
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelTransferDiskTest, LackOfSpaceForTheRestIsReportedAndNothingLost) {
    leave("01234", exbibyte);
    start();
    serverSays(206, {{"Content-Range", "bytes 5-1152921504606846975/1152921504606846976"},
                     {"ETag", "\"one\""}});
    EXPECT_TRUE(lacksSpace()) << message();
    EXPECT_EQ(read(m_files.received()), "01234");
}

TEST_F(ModelTransferDiskTest, LackOfSpaceForALargerFileIsReportedAndNothingLost) {
    leave("01234");
    start();
    serverSays(200, {{"Content-Length", "1152921504606846976"}, {"ETag", "\"two\""}});
    EXPECT_TRUE(lacksSpace()) << message();
    EXPECT_EQ(read(m_files.received()), "01234");
}

TEST_F(ModelTransferDiskTest, ADirectoryThatCannotBeLockedIsNobodyElsesDownload) {
    QFile file(m_files.directory());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    start();
    EXPECT_EQ(message(), "Install failed: Not a directory");
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferDiskTest, AModelThatAnotherProcessHasInstalledIsNotFetchedAgain) {
    ASSERT_TRUE(m_files.ensureDirectory());
    {
        const auto other = DirectoryLock::tryLock(m_files.directory());
        start();
        EXPECT_EQ(kind(), Case::failed);
        write(m_files.active(), "0123456789");
    }
    m_downloader->start();
    m_scheduler.runPosted();
    EXPECT_EQ(kind(), Case::ready);
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferDiskTest, AChecksumThatIsNoneIsReportedBeforeAnythingIsAsked) {
    m_source.sha256 = "abc";
    start();
    EXPECT_TRUE(message().starts_with("QUIETLARK_MODEL_SHA256 is no checksum")) << message();
    EXPECT_TRUE(m_network.requests().empty());
}

TEST_F(ModelTransferDiskTest, WhatIsContinuedIsRecordedForThisSessionBeforeTheFirstByte) {
    const ResumeData earlier{m_source.address(), "\"one\"", 10, 3, QStringLiteral("earlier")};
    write(m_files.received(), "01234");
    write(m_files.resume(), earlier.toJson());
    start();
    serverSays(206, {{"Content-Range", "bytes 3-9/10"}, {"ETag", "\"one\""}});
    EXPECT_EQ(ResumeData::read(m_files.resume()),
              (ResumeData{m_source.address(), "\"one\"", 10, 3, bootSession()}));
}

TEST_F(ModelTransferDiskTest, AProgressThatCannotBeSavedIsReportedAtOnce) {
    start();
    serverSays(200, {{"Content-Length", "1000000000"}, {"ETag", "\"one\""}});
    ASSERT_TRUE(QFile::remove(m_files.resume()));
    ASSERT_TRUE(QDir().mkpath(m_files.resume()));
    const QByteArray piece(64 * 1024, 'x');
    EXPECT_TRUE(waitUntil([&] {
        serverSends(piece);
        return kind() == Case::failed;
    }));
    EXPECT_EQ(message(), "Install failed: Is a directory");
    // What could not be saved may be lost, whatever can still be read.
    EXPECT_EQ(read(m_files.received()), "");
}

TEST_F(ModelTransferDiskTest, WhatCannotBeSavedOnCancellationIsFetchedAgain) {
    leave("01234");
    start();
    serverSays(206, {{"Content-Range", "bytes 5-9/10"}, {"ETag", "\"one\""}});
    serverSends("567");
    ASSERT_TRUE(QFile::remove(m_files.resume()));
    ASSERT_TRUE(QDir().mkpath(m_files.resume()));
    m_downloader->cancel();
    m_scheduler.runPosted();
    EXPECT_EQ(read(m_files.received()), "01234");
}

TEST_F(ModelTransferDiskTest, WhatAKilledProcessHasLeftBesideTheRecordGoes) {
    leave("01234");
    write(leftover(), "half");
    start();
    EXPECT_EQ(m_network.sent("Range"), "bytes=5-");
    EXPECT_FALSE(QFileInfo::exists(leftover()));
}

TEST_F(ModelTransferDiskTest, NothingIsLeftBesideTheInstalledModel) {
    start();
    serverOffersTenBytes();
    serverSends("0123456789");
    write(leftover(), "half");
    serverIsDone();
    EXPECT_EQ(filesThere(),
              (QStringList{QStringLiteral("active.bin"), QStringLiteral("active.bin.name")}));
}

}  // namespace quietlark
