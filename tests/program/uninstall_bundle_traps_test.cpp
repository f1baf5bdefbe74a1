#include "program/uninstall_traps_fixture.h"

namespace quietlark {
namespace {

using UninstallBundleTrapsTest = UninstallTrapsFixture;

TEST_F(UninstallBundleTrapsTest, OrdinarilyAllThatIsLeftIsInTheTrash) {
    installation.path = QStringLiteral("/home/me/.local/opt/Quietlark");
    const auto before = listFiles(QStringLiteral("/"));
    install("/home/me/.local/opt/Quietlark");
    link("/home/me/.local/bin/quietlark", "/home/me/.local/opt/Quietlark/bin/quietlark");
    useAndUninstall();
    QStringList after = listFiles(QStringLiteral("/"));
    after.removeIf([](const QString& path) {
        return path.startsWith(QStringLiteral("home/me/.local/share/Trash"));
    });
    EXPECT_EQ(after, before);
    EXPECT_TRUE(exists("/home/me/.local/share/Trash/files/Quietlark/bin/quietlark"));
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(UninstallBundleTrapsTest, AVariableThatMakesTheSettingsFolderTheBundle) {
    qputenv("XDG_CONFIG_HOME", "/home/me/.local/opt");
    installation.path = QStringLiteral("/home/me/.local/opt/Quietlark");
    install("/home/me/.local/opt/Quietlark");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/.local/share/Trash/files/Quietlark/bin/quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/opt/Quietlark"));
}

TEST_F(UninstallBundleTrapsTest, ABundleThatIsNotOursAlone) {
    install("/usr");
    install("/home/me");
    install("/opt/other");
    link("/opt/Quietlark", "/opt/other");
    write("/home/me/work/Quietlark/bin/quietlark");
    for (const char* path :
         {"/usr", "/usr/bin/quietlark", "/", "", "/home/me", "/opt", "/opt/", "/opt/other",
          "/opt/Quietlark", "/opt/Quietlark/../other", "/home/me/work/Quietlark", "work"}) {
        installation.path = QString::fromLatin1(path);
        useAndUninstall();
        ASSERT_FALSE(shell.alerts().empty());
        EXPECT_EQ(shell.alerts().back().title,
                  QStringLiteral("Couldn't move Quietlark to the Trash"));
        EXPECT_TRUE(exists("/usr/bin/quietlark"));
        EXPECT_TRUE(exists("/opt/Quietlark"));
        EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
        EXPECT_FALSE(exists("/home/me/.local/share/Trash/files"));
    }
}

TEST_F(UninstallBundleTrapsTest, FurtherPlacesForApplicationsThatAreNone) {
    install("/usr");
    install("/home/me/work/Quietlark");
    for (const char* further : {"", "/", "//", "/usr", "/usr/", "relative", "..", "."}) {
        qputenv("QUIETLARK_APPLICATIONS", further);
        for (const char* path : {"/usr", "/home/me/work/Quietlark", "Quietlark"}) {
            installation.path = QString::fromLatin1(path);
            useAndUninstall();
            EXPECT_TRUE(exists("/usr/bin/quietlark")) << further;
            EXPECT_TRUE(exists("/home/me/work/Quietlark/bin/quietlark")) << further;
        }
    }
    qputenv("QUIETLARK_APPLICATIONS", "/home/me");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/work/Quietlark/bin/quietlark"));
    qunsetenv("QUIETLARK_APPLICATIONS");
}

TEST_F(UninstallBundleTrapsTest, AListOfFoldersThatWereNotMadeForIt) {
    installation.path = QStringLiteral("/opt/Quietlark");
    install("/opt/Quietlark");
    for (const char* folder : {"/srv/empty", "/empty", "/home/me/empty", "/opt/empty"})
        ASSERT_TRUE(QDir().mkpath(QString::fromLatin1(folder)));
    write(QStringLiteral("/opt/Quietlark/share/quietlark/registered"),
          "/srv/empty/\n/empty/\n../../../\n../empty/\nempty/\n/\n//\n/opt/Quietlark/../empty/\n"
          "/home/me/empty/\n/home/me/thesis\n/etc/passwords\n\n/home/me/\n");
    useAndUninstall();
    EXPECT_FALSE(exists("/opt/Quietlark"));
    for (const char* folder : {"/srv/empty", "/empty", "/home/me/empty", "/opt/empty"})
        EXPECT_TRUE(exists(folder)) << folder;
}

TEST_F(UninstallBundleTrapsTest, AVariableThatNamesAFolderInTheBundle) {
    installation.path = QStringLiteral("/opt/Quietlark");
    install("/opt/Quietlark");
    qputenv("XDG_DATA_HOME", "/opt/Quietlark/share");
    write("/opt/Quietlark/share/mail/thesis");
    useAndUninstall();
    EXPECT_TRUE(exists("/opt/Quietlark/share/mail/thesis"));
    EXPECT_FALSE(exists("/opt/Quietlark/share/Quietlark"));
}

TEST_F(UninstallBundleTrapsTest, LinksThatLeadElsewhereAndFilesThatAreNoLinks) {
    installation.path = QStringLiteral("/opt/Quietlark");
    install("/opt/Quietlark");
    write("/home/me/.local/bin/quietlark");
    link("/home/me/.local/share/applications/net.quietlark.app.desktop", "/home/me/thesis");
    useAndUninstall();
    EXPECT_FALSE(exists("/opt/Quietlark"));
    EXPECT_TRUE(exists("/home/me/.local/bin/quietlark"));
    EXPECT_TRUE(exists("/home/me/.local/share/applications/net.quietlark.app.desktop"));
}

}  // namespace
}  // namespace quietlark
