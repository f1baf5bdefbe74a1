#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "config/config.h"

namespace quietlark {
namespace {

class ConfigFileTest : public testing::Test {
protected:
    void write(const QByteArray& content) const {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    [[nodiscard]] QByteArray content() const {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] static Config changedConfig() {
        Config config;
        config.serverMode = Local{};
        config.language = QStringLiteral("de");
        return config;
    }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("config.json"));
};

TEST_F(ConfigFileTest, SavedFileLoadsEqual) {
    ASSERT_TRUE(changedConfig().save(m_path));
    EXPECT_EQ(Config::load(m_path), changedConfig());
}

TEST_F(ConfigFileTest, SavingCreatesTheMissingDirectory) {
    const QString path = m_directory.filePath(QStringLiteral("deep/Quietlark/config.json"));
    ASSERT_TRUE(changedConfig().save(path));
    EXPECT_EQ(Config::load(path), changedConfig());
}

TEST_F(ConfigFileTest, SavingReplacesTheFileAsAWhole) {
    write(QByteArray(10000, 'x'));
    ASSERT_TRUE(changedConfig().save(m_path));
    EXPECT_EQ(content(), changedConfig().toJson());
    EXPECT_EQ(QDir(m_directory.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(ConfigFileTest, SavingWhereAFileStandsInTheWayFailsWithASentence) {
    write("in the way");
    const auto result = changedConfig().save(m_path + QStringLiteral("/Quietlark/config.json"));
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().description.endsWith(u'.'));
    EXPECT_EQ(content(), "in the way");
}

TEST_F(ConfigFileTest, SavingOverADirectoryFailsWithASentence) {
    ASSERT_TRUE(QDir().mkdir(m_path));
    const auto result = changedConfig().save(m_path);
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().description.contains(m_path));
}

TEST_F(ConfigFileTest, SavingThroughALinkKeepsTheLink) {
    const QString target = m_directory.filePath(QStringLiteral("real.json"));
    ASSERT_TRUE(changedConfig().save(target));
    ASSERT_TRUE(QFile::link(target, m_path));
    ASSERT_TRUE(Config().save(m_path));
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_EQ(Config::load(target), Config());
}

TEST_F(ConfigFileTest, MissingFileIsTheDefaultAndIsNotCreated) {
    EXPECT_EQ(Config::load(m_path), Config());
    EXPECT_FALSE(QFile::exists(m_path));
}

TEST_F(ConfigFileTest, FileLackingOneMemberIsTheWholeDefault) {
    QByteArray json = changedConfig().toJson();
    write(json.replace("onboardingStep", "onboardingSteps"));
    EXPECT_EQ(Config::load(m_path), Config());
}

TEST_F(ConfigFileTest, UndecodableFileIsTheDefaultAndStaysAsItIs) {
    write("not json");
    EXPECT_EQ(Config::load(m_path), Config());
    EXPECT_EQ(content(), "not json");
}

TEST_F(ConfigFileTest, TruncatedFileIsTheDefault) {
    const QByteArray json = changedConfig().toJson();
    for (qsizetype length = 0; length < json.size() - 2; ++length) {
        write(json.first(length));
        ASSERT_EQ(Config::load(m_path), Config()) << length;
    }
}

TEST_F(ConfigFileTest, BinaryFileIsTheDefault) {
    QByteArray bytes;
    for (int i = 0; i < 100000; ++i)
        bytes.append(static_cast<char>(i * 37));
    write(bytes);
    EXPECT_EQ(Config::load(m_path), Config());
}

TEST_F(ConfigFileTest, HugeFileIsTheDefaultWithoutBeingRead) {
    const QByteArray json = changedConfig().toJson();
    write(json);
    ASSERT_EQ(::truncate(QFile::encodeName(m_path).constData(), 100 * 1024 * 1024), 0);
    EXPECT_EQ(Config::load(m_path), Config());
}

TEST_F(ConfigFileTest, DirectoryIsTheDefault) {
    ASSERT_TRUE(QDir().mkdir(m_path));
    EXPECT_EQ(Config::load(m_path), Config());
}

TEST_F(ConfigFileTest, PipeWithoutAWriterIsTheDefaultAtOnce) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    EXPECT_EQ(Config::load(m_path), Config());
}

TEST_F(ConfigFileTest, LinkToItselfIsTheDefault) {
    ASSERT_TRUE(QFile::link(m_path, m_path));
    EXPECT_EQ(Config::load(m_path), Config());
}

TEST_F(ConfigFileTest, LegacyServerIsSavedUnderItsNewName) {
    QByteArray json = changedConfig().toJson();
    write(json.replace("\"local\": {", "\"manual\": {\"host\": \"h\", \"port\": 9"));
    ASSERT_TRUE(Config::load(m_path).save(m_path));
    EXPECT_TRUE(content().contains("\"manualRemote\""));
    EXPECT_FALSE(content().contains("\"manual\""));
}

TEST_F(ConfigFileTest, DefaultFileLiesInTheUsersConfigurationDirectoryAndStaysThere) {
    const QString first = Config::defaultFileURL();
    EXPECT_TRUE(first.endsWith(QStringLiteral("/Quietlark/config.json")));
    qputenv("XDG_CONFIG_HOME", "/nowhere");
    EXPECT_EQ(Config::defaultFileURL(), first);
}

}  // namespace
}  // namespace quietlark
