#include "platform/base_directories.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

class BaseDirectoriesTest : public ::testing::Test {
protected:
    BaseDirectoriesTest() {
        qputenv("HOME", "/home/me");
        qunsetenv("XDG_CONFIG_HOME");
        qunsetenv("XDG_DATA_HOME");
    }
    ~BaseDirectoriesTest() override {
        m_home.isNull() ? qunsetenv("HOME") : qputenv("HOME", m_home);
    }

    static void expect(const char* config, const char* data) {
        EXPECT_EQ(configHome(), QString::fromUtf8(config));
        EXPECT_EQ(dataHome(), QString::fromUtf8(data));
    }

private:
    const QByteArray m_home = qgetenv("HOME");
};

TEST_F(BaseDirectoriesTest, TheyAreInTheHomeDirectory) {
    expect("/home/me/.config", "/home/me/.local/share");
}

TEST_F(BaseDirectoriesTest, TheEnvironmentMayNameOthers) {
    qputenv("XDG_CONFIG_HOME", "/etc/mine/");
    qputenv("XDG_DATA_HOME", "/data");
    expect("/etc/mine", "/data");
    EXPECT_EQ(usualConfigHome(), QStringLiteral("/home/me/.config"));
    EXPECT_EQ(usualDataHome(), QStringLiteral("/home/me/.local/share"));
}

TEST_F(BaseDirectoriesTest, EmptyAndRelativeOnesAreIgnored) {
    for (const char* ignored : {"", ".", "..", "config", "~/config"}) {
        qputenv("XDG_CONFIG_HOME", ignored);
        qputenv("XDG_DATA_HOME", ignored);
        expect("/home/me/.config", "/home/me/.local/share");
    }
}

TEST_F(BaseDirectoriesTest, WithoutAHomeDirectoryTheyAreInTheRootDirectory) {
    for (const char* home : {"/", "", "relative"}) {
        qputenv("HOME", home);
        expect("/.config", "/.local/share");
    }
}

}  // namespace
}  // namespace quietlark
