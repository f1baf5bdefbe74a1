#include "commands/configured_server.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quietlark {
namespace {

class ConfiguredServerTest : public testing::Test {
protected:
    void write(const QString& path, const QByteArray& content) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    ConfiguredServer configured() {
        return configuredServer(m_configPath, Config::load(m_configPath), m_endpointFile);
    }
    void expectReason(const char* words) {
        const ConfiguredServer server = configured();
        ASSERT_FALSE(server);
        EXPECT_TRUE(server.error().contains(QString::fromUtf8(words)))
            << server.error().toStdString();
        EXPECT_FALSE(server.error().contains(u'\n'));
    }
    void chooseLocal() {
        Config config;
        config.serverMode = Local{};
        ASSERT_TRUE(config.save(m_configPath));
    }

    QTemporaryDir m_directory;
    QString m_configPath = m_directory.filePath(QStringLiteral("config.json"));
    QString m_endpointPath = m_directory.filePath(QStringLiteral("endpoint"));
    EndpointFile m_endpointFile{m_endpointPath};
};

TEST_F(ConfiguredServerTest, TheServerOnThisComputerIsUsedWhereItRuns) {
    chooseLocal();
    write(m_endpointPath, "local=127.0.0.1:8178\n");
    EXPECT_EQ(configured(), QStringLiteral("http://127.0.0.1:8178"));
}

TEST_F(ConfiguredServerTest, WithoutSettingsNoneIsConfigured) {
    expectReason("No transcription server is configured");
}

TEST_F(ConfiguredServerTest, ALocalServerThatDoesNotRunIsSaidToDoSo) {
    chooseLocal();
    expectReason("does not run");
}

TEST_F(ConfiguredServerTest, AnEndpointFileThatOthersMayWriteIsNotUsed) {
    chooseLocal();
    write(m_endpointPath, "local=127.0.0.1:8178\n");
    ASSERT_EQ(chmod(QFile::encodeName(m_endpointPath).constData(), 0666), 0);
    expectReason("belongs to another user");
}

TEST_F(ConfiguredServerTest, ATruncatedConfigurationIsNamed) {
    write(m_configPath, R"({"hotkey": "ctrl+al)");
    expectReason("config.json cannot be understood");
}

TEST_F(ConfiguredServerTest, ABinaryConfigurationIsNamed) {
    write(m_configPath, QByteArray("\0\xff\x01\n", 4));
    expectReason("config.json cannot be understood");
}

TEST_F(ConfiguredServerTest, AConfigurationOfAHundredMegabytesIsNamed) {
    write(m_configPath, "{");
    ASSERT_TRUE(QFile::resize(m_configPath, 100 * 1000 * 1000));
    expectReason("config.json cannot be understood");
}

TEST_F(ConfiguredServerTest, AConfigurationThatIsADirectoryIsNamed) {
    ASSERT_TRUE(QDir().mkpath(m_configPath));
    expectReason("config.json cannot be understood");
}

}  // namespace
}  // namespace quietlark
