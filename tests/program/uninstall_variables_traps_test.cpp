#include "program/uninstall_traps_fixture.h"

namespace quietlark {
namespace {

using UninstallVariablesTrapsTest = UninstallTrapsFixture;

TEST_F(UninstallVariablesTrapsTest, AHomeDirectoryThatIsTheRootDirectory) {
    qputenv("HOME", "/");
    useAndUninstall();
    EXPECT_FALSE(exists("/.config/Quietlark"));
    EXPECT_FALSE(exists("/.local/share/Quietlark"));
}

TEST_F(UninstallVariablesTrapsTest, NoHomeDirectory) {
    for (const char* home : {"", "work"}) {
        qputenv("HOME", home);
        useAndUninstall();
        EXPECT_FALSE(exists("/.config/Quietlark"));
    }
    qunsetenv("HOME");
    useAndUninstall();
}

TEST_F(UninstallVariablesTrapsTest, EmptyVariables) {
    qputenv("XDG_CONFIG_HOME", "");
    qputenv("XDG_DATA_HOME", "");
    qputenv("QUIETLARK_ENDPOINT_FILE", "");
    useAndUninstall();
    EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
}

TEST_F(UninstallVariablesTrapsTest, RelativeVariables) {
    for (const char* relative : {".", "..", "work", "../work"}) {
        qputenv("XDG_CONFIG_HOME", relative);
        qputenv("XDG_DATA_HOME", relative);
        qputenv("QUIETLARK_ENDPOINT_FILE", "thesis");
        useAndUninstall();
        EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
        EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
    }
}

TEST_F(UninstallVariablesTrapsTest, VariablesThatNameTheRootDirectory) {
    for (const char* root : {"/", "//", "/.", "/home/../"}) {
        qputenv("XDG_CONFIG_HOME", root);
        qputenv("XDG_DATA_HOME", root);
        useAndUninstall();
        EXPECT_FALSE(exists("/Quietlark"));
    }
}

TEST_F(UninstallVariablesTrapsTest, VariablesThatNameADirectoryWithAQuietlarkOfTheUsers) {
    for (const char* place : {"/home/me/Documents", "/home/me/work"}) {
        qputenv("XDG_CONFIG_HOME", place);
        qputenv("XDG_DATA_HOME", place);
        useAndUninstall();
    }
    EXPECT_FALSE(exists("/home/me/Documents/Quietlark/config.json"));
    EXPECT_FALSE(exists("/home/me/Documents/Quietlark/models/active.bin"));
}

TEST_F(UninstallVariablesTrapsTest, AVariableThatMakesTheSettingsFolderTheHomeDirectory) {
    write("/home/Quietlark/thesis");
    qputenv("HOME", "/home/Quietlark");
    qputenv("XDG_CONFIG_HOME", "/home");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/Quietlark/thesis"));
    EXPECT_FALSE(exists("/home/Quietlark/config.json"));
}

TEST_F(UninstallVariablesTrapsTest, AVariableThatNamesAFolderInTheSettings) {
    qputenv("XDG_DATA_HOME", "/home/me/.config/Quietlark/data");
    write("/home/me/.config/Quietlark/data/mail/thesis");
    write("/home/me/.config/Quietlark/data/Trash/files/thesis");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/.config/Quietlark/data/mail/thesis"));
    EXPECT_TRUE(exists("/home/me/.config/Quietlark/data/Trash/files/thesis"));
    EXPECT_FALSE(exists("/home/me/.config/Quietlark/config.json"));
    EXPECT_FALSE(exists("/home/me/.config/Quietlark/data/Quietlark"));
}

TEST_F(UninstallVariablesTrapsTest, AVariableThatNamesAFolderInTheModels) {
    qputenv("XDG_CONFIG_HOME", "/home/me/.local/share/Quietlark");
    write("/home/me/.local/share/Quietlark/mail/settings");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/.local/share/Quietlark/mail/settings"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark/models"));
}

TEST_F(UninstallVariablesTrapsTest, OtherVariablesThatNameAFolderInTheSettings) {
    for (const char* variable : {"XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        qputenv(variable, "/home/me/.config/Quietlark/state");
        write("/home/me/.config/Quietlark/state/mail/thesis");
        useAndUninstall();
        EXPECT_TRUE(exists("/home/me/.config/Quietlark/state/mail/thesis")) << variable;
        EXPECT_FALSE(exists("/home/me/.config/Quietlark/config.json")) << variable;
        qunsetenv(variable);
    }
}

TEST_F(UninstallVariablesTrapsTest, VariablesThatNameTheHomeDirectoryWhichIsEmpty) {
    for (const char* home : {"/home/new", "/root"}) {
        qputenv("HOME", home);
        for (const char* place : {home, "/root", "/home"}) {
            ASSERT_TRUE(QDir().mkpath(QString::fromLatin1(home)));
            qputenv("XDG_CONFIG_HOME", place);
            qputenv("XDG_DATA_HOME", place);
            useProgram();
            const QString key = QStringLiteral("foldersMissingAtLaunch");
            traces().defaults.set(key, traces().defaults.string(key).value_or(QString()) +
                                           QStringLiteral("\n/home\n/home/new\n/root"));
            uninstall();
            EXPECT_TRUE(exists(home)) << place;
        }
    }
}

TEST_F(UninstallVariablesTrapsTest, FilesOfTheUsersNamedAlmostAsOurs) {
    const std::array theirs{"/home/me/Documents/Quietlark/config.json.of-my-thesis",
                            "/home/me/Documents/Quietlark/config.json.backup",
                            "/home/me/Documents/Quietlark/defaults.ini.old",
                            "/home/me/Documents/Quietlark/models/active.bin.backup"};
    for (const char* path : theirs)
        write(path);
    qputenv("XDG_CONFIG_HOME", "/home/me/Documents");
    qputenv("XDG_DATA_HOME", "/home/me/Documents");
    useProgram();
    for (const QString& path : {files.model.partial(), files.model.received(), files.model.resume(),
                                files.model.resume() + QStringLiteral(".new"), files.model.name(),
                                files.config + QStringLiteral(".aBcDeF")})
        write(path);
    uninstall();
    expectOthersFiles();
    for (const char* path : theirs)
        EXPECT_TRUE(exists(path)) << path;
    EXPECT_EQ(listFiles(QStringLiteral("/home/me/Documents/Quietlark/models")),
              (QStringList{QStringLiteral("active.bin.backup"), QStringLiteral("thesis")}));
    EXPECT_FALSE(exists("/home/me/Documents/Quietlark/config.json.aBcDeF"));
}

}  // namespace
}  // namespace quietlark
