#include "platform/regular_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quietlark {
namespace {

class RegularFileTest : public testing::Test {
protected:
    void write(const QByteArray& content) const {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    void setMode(mode_t mode) const { ASSERT_EQ(::chmod(nativePath().constData(), mode), 0); }
    [[nodiscard]] QByteArray nativePath() const { return QFile::encodeName(m_path); }
    [[nodiscard]] std::optional<QByteArray> read(qsizetype maxBytes = 1000) const {
        return readRegularFile(m_path, maxBytes, FileTrust::Anyone);
    }
    [[nodiscard]] std::optional<QByteArray> readTrusted() const {
        return readRegularFile(m_path, 1000, FileTrust::OwnerAndRoot);
    }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("file"));
};

TEST_F(RegularFileTest, ContentIsReadByteForByte) {
    const QByteArray content("a\0b\r\n\xff", 6);
    write(content);
    EXPECT_EQ(read(), content);
}

TEST_F(RegularFileTest, EmptyFileIsEmptyAndNotAbsent) {
    write("");
    EXPECT_EQ(read(), QByteArray());
}

TEST_F(RegularFileTest, FileOfExactlyTheLimitIsRead) {
    write(QByteArray(1000, 'x'));
    EXPECT_EQ(read(1000), QByteArray(1000, 'x'));
    EXPECT_EQ(read(999), std::nullopt);
}

TEST_F(RegularFileTest, FileThatHidesItsSizeIsReadAndBounded) {
    EXPECT_TRUE(readRegularFile(QStringLiteral("/proc/self/status"), 100000, FileTrust::Anyone));
    EXPECT_FALSE(readRegularFile(QStringLiteral("/proc/self/status"), 10, FileTrust::Anyone));
}

TEST_F(RegularFileTest, MissingFileAndDirectoryAreAbsent) {
    EXPECT_EQ(read(), std::nullopt);
    ASSERT_TRUE(QDir().mkdir(m_path));
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(RegularFileTest, DeviceIsAbsent) {
    EXPECT_EQ(readRegularFile(QStringLiteral("/dev/zero"), 10, FileTrust::Anyone), std::nullopt);
}

TEST_F(RegularFileTest, PipeIsAbsentWithoutWaitingForAWriter) {
    ASSERT_EQ(::mkfifo(nativePath().constData(), 0600), 0);
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(readTrusted(), std::nullopt);
}

TEST_F(RegularFileTest, OwnFileThatNobodyElseMayWriteIsTrusted) {
    write("x");
    setMode(0644);
    EXPECT_EQ(readTrusted(), QByteArray("x"));
}

TEST_F(RegularFileTest, FileThatTheGroupMayWriteIsNotTrusted) {
    write("x");
    setMode(0664);
    EXPECT_EQ(readTrusted(), std::nullopt);
    EXPECT_EQ(read(), QByteArray("x"));
}

TEST_F(RegularFileTest, FileThatEverybodyMayWriteIsNotTrusted) {
    write("x");
    setMode(0606);
    EXPECT_EQ(readTrusted(), std::nullopt);
}

TEST_F(RegularFileTest, LinkIsNotTrustedButMayBeRead) {
    const QString target = m_directory.filePath(QStringLiteral("target"));
    write("x");
    ASSERT_TRUE(QFile::rename(m_path, target));
    ASSERT_TRUE(QFile::link(target, m_path));
    EXPECT_EQ(readTrusted(), std::nullopt);
    EXPECT_EQ(read(), QByteArray("x"));
}

TEST_F(RegularFileTest, FileOfAnotherUserIsNotTrusted) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
    write("x");
    ASSERT_EQ(::chown(nativePath().constData(), 12345, 12345), 0);
    EXPECT_EQ(readTrusted(), std::nullopt);
    EXPECT_EQ(read(), QByteArray("x"));
}

}  // namespace
}  // namespace quietlark
