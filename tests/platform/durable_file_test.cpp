#include "platform/durable_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "platform/boot_session.h"
#include "platform/directory_lock.h"
#include "platform/sha256.h"

namespace quietlark {

namespace {

class DurableFileTest : public testing::Test {
protected:
    [[nodiscard]] QString path(const char* name) const {
        return m_home.filePath(QString::fromUtf8(name));
    }
    static QByteArray read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_home;
};

}  // namespace

TEST_F(DurableFileTest, WritesAFileAndNothingBesideIt) {
    EXPECT_TRUE(writeFileDurably(path("a"), "one"));
    EXPECT_TRUE(writeFileDurably(path("a"), "two"));
    EXPECT_EQ(read(path("a")), "two");
    EXPECT_EQ(QDir(m_home.path()).entryList(QDir::Files), QStringList{QStringLiteral("a")});
}

TEST_F(DurableFileTest, TellsWhyAFileCannotBeWritten) {
    EXPECT_EQ(writeFileDurably(path("none/a"), "one").error(),
              QStringLiteral("No such file or directory"));
}

TEST_F(DurableFileTest, AFileThatCannotBeReplacedLeavesNothingBesideIt) {
    ASSERT_TRUE(QDir().mkpath(path("a")));
    EXPECT_EQ(writeFileDurably(path("a"), "one").error(), QStringLiteral("Is a directory"));
    EXPECT_TRUE(QDir(m_home.path()).entryList(QDir::Files).isEmpty());
}

TEST_F(DurableFileTest, AShortFileOfTheSameLengthIsRewrittenWhereItIs) {
    ASSERT_TRUE(writeFileDurably(path("a"), "one"));
    QFile::link(path("a"), path("link"));
    QFile open(path("a"));
    ASSERT_TRUE(open.open(QIODevice::ReadOnly));
    EXPECT_TRUE(rewriteFileDurably(path("a"), "two"));
    EXPECT_EQ(open.readAll(), "two");
    EXPECT_TRUE(rewriteFileDurably(path("link"), "new"));
    EXPECT_EQ(read(path("a")), "two");
    EXPECT_EQ(read(path("link")), "new");
}

TEST_F(DurableFileTest, AnyOtherFileIsReplaced) {
    ASSERT_TRUE(writeFileDurably(path("a"), "one"));
    QFile open(path("a"));
    ASSERT_TRUE(open.open(QIODevice::ReadOnly));
    for (const QByteArray& content :
         {QByteArray("four"), QByteArray(sectorBytes + 1, 'x'), QByteArray(sectorBytes + 1, 'y')}) {
        EXPECT_TRUE(rewriteFileDurably(path("a"), content));
        EXPECT_EQ(read(path("a")), content);
    }
    EXPECT_EQ(open.readAll(), "one");
    EXPECT_EQ(rewriteFileDurably(path("none/a"), "one").error(),
              QStringLiteral("No such file or directory"));
}

TEST_F(DurableFileTest, ReplacesAFileByAnother) {
    ASSERT_TRUE(writeFileDurably(path("a"), "old"));
    ASSERT_TRUE(writeFileDurably(path("b"), "new"));
    EXPECT_TRUE(replaceFile(path("b"), path("a")));
    EXPECT_EQ(read(path("a")), "new");
    EXPECT_FALSE(QFile::exists(path("b")));
}

TEST_F(DurableFileTest, DoesNotReplaceADirectory) {
    ASSERT_TRUE(writeFileDurably(path("a"), "file"));
    ASSERT_TRUE(QDir().mkpath(path("b")));
    EXPECT_EQ(replaceFile(path("a"), path("b")).error(), QStringLiteral("Is a directory"));
    EXPECT_EQ(read(path("a")), "file");
}

TEST_F(DurableFileTest, SyncsWhatIsThereOnly) {
    EXPECT_TRUE(syncDirectory(m_home.path()));
    EXPECT_FALSE(syncDirectory(path("none")));
    EXPECT_FALSE(syncFile(-1));
}

TEST_F(DurableFileTest, ADirectoryIsLockedForOneAtATime) {
    {
        const auto first = DirectoryLock::tryLock(m_home.path());
        EXPECT_TRUE(first);
        EXPECT_FALSE(DirectoryLock::tryLock(m_home.path()));
    }
    EXPECT_TRUE(DirectoryLock::tryLock(m_home.path()));
}

TEST_F(DurableFileTest, ALockTellsSomebodyElseFromAnyOtherObstacle) {
    ASSERT_TRUE(writeFileDurably(path("file"), ""));
    const auto first = DirectoryLock::tryLock(m_home.path());
    EXPECT_EQ(DirectoryLock::tryLock(m_home.path()).error(), std::errc::operation_would_block);
    EXPECT_EQ(DirectoryLock::tryLock(path("none")).error(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(DirectoryLock::tryLock(path("file")).error(), std::errc::not_a_directory);
}

TEST(BootSessionTest, IsTheSameAllTheTime) {
    EXPECT_FALSE(bootSession().isEmpty());
    EXPECT_EQ(bootSession(), bootSession());
}

// The examples of FIPS 180-4.
TEST(Sha256Test, AnswersThePublishedDigests) {
    Sha256 digest;
    EXPECT_EQ(digest.takeHex(), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    digest.add("abc");
    EXPECT_EQ(digest.takeHex(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Sha256Test, PiecesCountAsOne) {
    Sha256 digest;
    digest.add("a");
    digest.add("");
    digest.add("bc");
    EXPECT_EQ(digest.takeHex(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace quietlark
