#include "local_server/model_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quietlark {

namespace {

class ModelFilesTest : public testing::Test {
protected:
    [[nodiscard]] mode_t mode() const {
        struct stat status {};
        EXPECT_EQ(::stat(QFile::encodeName(m_files.directory()).constData(), &status), 0);
        return status.st_mode & 0777;
    }

    QTemporaryDir m_home;
    ModelFiles m_files{m_home.filePath(QStringLiteral("data/Quietlark/models"))};
};

}  // namespace

TEST_F(ModelFilesTest, LiesInTheUsersDataByDefault) {
    EXPECT_TRUE(
        ModelFiles::atDefaultDirectory().directory().endsWith(QStringLiteral("/Quietlark/models")));
}

TEST_F(ModelFilesTest, TheFilesAreNamedAfterTheActiveOne) {
    const ModelFiles files(QStringLiteral("/models"));
    EXPECT_EQ(files.active(), QStringLiteral("/models/active.bin"));
    EXPECT_EQ(files.partial(), QStringLiteral("/models/active.bin.partial"));
    EXPECT_EQ(files.resume(), QStringLiteral("/models/active.bin.resume"));
    EXPECT_EQ(files.name(), QStringLiteral("/models/active.bin.name"));
}

TEST_F(ModelFilesTest, TheDirectoryIsMadeForEverybodyToRead) {
    const mode_t before = ::umask(077);
    EXPECT_TRUE(m_files.ensureDirectory());
    ::umask(before);
    EXPECT_EQ(mode(), 0755U);
}

TEST_F(ModelFilesTest, ADirectoryThatIsThereIsLeftAsItIs) {
    ASSERT_TRUE(QDir().mkpath(m_files.directory()));
    ASSERT_EQ(::chmod(QFile::encodeName(m_files.directory()).constData(), 0700), 0);
    EXPECT_TRUE(m_files.ensureDirectory());
    EXPECT_EQ(mode(), 0700U);
}

TEST_F(ModelFilesTest, ADirectoryIsNoModel) {
    ASSERT_TRUE(QDir().mkpath(m_files.active()));
    EXPECT_FALSE(m_files.isInstalled());
}

}  // namespace quietlark
