#include "program/uninstall_traps_fixture.h"

namespace quietlark {
namespace {

using UninstallFilesTrapsTest = UninstallTrapsFixture;

TEST_F(UninstallFilesTrapsTest, TheHomeDirectoryOfAnotherUser) {
    useProgram();
    install("/home/me/.local/opt/Quietlark");
    link("/home/me/.local/bin/quietlark", "/opt/Quietlark/bin/quietlark");
    QDirIterator each(QStringLiteral("/home/me"),
                      QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    ASSERT_EQ(::chown("/home/me", 1234, 1234), 0);
    while (each.hasNext())
        ASSERT_EQ(::lchown(QFile::encodeName(each.next()).constData(), 1234, 1234), 0);
    const auto before = listFiles(QStringLiteral("/home/me"));
    for (const char* bundle : {"/opt/Quietlark", "/home/me/.local/opt/Quietlark"}) {
        install("/opt/Quietlark");
        installation.path = QString::fromLatin1(bundle);
        uninstall();
        ASSERT_FALSE(shell.alerts().empty());
        EXPECT_EQ(shell.alerts().back().title,
                  QStringLiteral("Couldn't move Quietlark to the Trash"));
        EXPECT_EQ(listFiles(QStringLiteral("/home/me")), before);
    }
    expectOthersFiles();
}

TEST_F(UninstallFilesTrapsTest, FoldersThatAreLinksToElsewhere) {
    link("/home/me/.config/Quietlark", "../Documents/Quietlark");
    link("/home/me/.local/share/Quietlark", "/home/me/Documents/Quietlark");
    useAndUninstall();
    EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
}

TEST_F(UninstallFilesTrapsTest, LinksOutOfTheFolders) {
    useProgram();
    for (const char* path :
         {"/home/me/.config/Quietlark/config.json", "/home/me/.config/Quietlark/defaults.ini",
          "/home/me/.config/autostart/net.quietlark.app.desktop",
          "/home/me/.local/share/Quietlark/models/active.bin", "/tmp/quietlark.log"}) {
        ASSERT_TRUE(QFile::remove(QString::fromLatin1(path)));
        link(path, "/home/me/thesis");
    }
    link("/home/me/.config/Quietlark/root", "/");
    link("/home/me/.local/share/Quietlark/home", "/home/me");
    link("/tmp/quietlark.endpoint", "/home/me/thesis");
    uninstall();
    expectOthersFiles();
    EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
    EXPECT_FALSE(exists("/tmp/quietlark.log"));
    EXPECT_FALSE(exists("/tmp/quietlark.endpoint"));
}

TEST_F(UninstallFilesTrapsTest, FilesWithASecondName) {
    useProgram();
    ASSERT_EQ(::link("/thesis", "/home/me/.config/Quietlark/thesis"), 0);
    ASSERT_TRUE(QFile::remove(QStringLiteral("/tmp/quietlark.log")));
    ASSERT_EQ(::link("/thesis", "/tmp/quietlark.log"), 0);
    uninstall();
    expectOthersFiles();
    EXPECT_FALSE(exists("/tmp/quietlark.log"));
}

TEST_F(UninstallFilesTrapsTest, OtherFileSystemsInTheFolders) {
    useProgram();
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("/home/me/.local/share/Quietlark/disk")));
    ASSERT_EQ(::mount("/home/me/Documents", "/home/me/.local/share/Quietlark/disk", nullptr,
                      MS_BIND, nullptr),
              0);
    uninstall();
    expectOthersFiles();
    EXPECT_TRUE(exists("/home/me/.local/share/Quietlark/disk/Quietlark/thesis"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark/models"));
    ASSERT_EQ(::umount2("/home/me/.local/share/Quietlark/disk", MNT_DETACH), 0);
}

TEST_F(UninstallFilesTrapsTest, AFileOfTheUsersNamedAsTheEndpointFile) {
    for (const char* path : {"/home/me/thesis", "/home/me/Documents", "/", "/etc/passwords"}) {
        qputenv("QUIETLARK_ENDPOINT_FILE", path);
        useAndUninstall();
    }
}

TEST_F(UninstallFilesTrapsTest, AnEndpointFileElsewhereGoesWithTheRest) {
    qputenv("QUIETLARK_ENDPOINT_FILE", "/home/me/endpoint");
    write(QStringLiteral("/home/me/endpoint"), "local=127.0.0.1:9000\nrtf=3.5\n");
    write("/tmp/quietlark.endpoint");
    useAndUninstall();
    EXPECT_FALSE(exists("/home/me/endpoint"));
    EXPECT_TRUE(exists("/tmp/quietlark.endpoint"));
}

TEST_F(UninstallFilesTrapsTest, AFolderInThePlaceOfAFile) {
    useProgram();
    ASSERT_TRUE(QFile::remove(QStringLiteral("/tmp/quietlark.log")));
    write("/tmp/quietlark.log/thesis");
    write("/tmp/quietlark.endpoint/thesis");
    uninstall();
    EXPECT_TRUE(exists("/tmp/quietlark.log/thesis"));
    EXPECT_TRUE(exists("/tmp/quietlark.endpoint/thesis"));
}

TEST_F(UninstallFilesTrapsTest, FoldersThatWereMadeByUsingItGo) {
    qputenv("HOME", "/home/new");
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("/home/new")));
    useProgram();
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("/home/new/.config/systemd/user")));
    uninstall();
    EXPECT_EQ(listFiles(QStringLiteral("/home/new")), QStringList());
}

TEST_F(UninstallFilesTrapsTest, FoldersThatWereThereOrAreInUseStay) {
    qputenv("HOME", "/home/new");
    for (const char* folder : {"/home/new/.config/autostart", "/home/new/.local"})
        ASSERT_TRUE(QDir().mkpath(QString::fromLatin1(folder)));
    useProgram();
    write("/home/new/.local/share/thesis");
    uninstall();
    EXPECT_TRUE(exists("/home/new/.config/autostart"));
    EXPECT_TRUE(exists("/home/new/.local/share/thesis"));
}

TEST_F(UninstallFilesTrapsTest, ANoteOfFoldersThatSomebodyElseHasMade) {
    for (const char* folder :
         {"/home/me/empty", "/home/me/.config/empty", "/home/me/.config/Other/empty",
          "/home/me/.config/systemd/empty", "/home/empty", "/empty", "/tmp/empty", "/work"})
        ASSERT_TRUE(QDir().mkpath(QString::fromLatin1(folder)));
    link("/home/me/.config/systemd/user", "/empty");
    useProgram();
    const auto before = listFiles(QStringLiteral("/"));
    traces().defaults.set(
        QStringLiteral("foldersMissingAtLaunch"),
        QStringLiteral("/\n//\n\n.\n..\nwork\n/home\n/home/me\n/home/me/\n/home/me/empty\n"
                       "/home/me/.config/empty\n/home/me/.config/Other/empty\n/home/empty\n/empty\n"
                       "/home/me/.config/autostart/../empty\n/home/me/.config/systemd/empty\n"
                       "/home/me/.config\n/home/me/.config/autostart\n/home/me/.config/systemd\n"
                       "/home/me/.config/systemd/user\n/home/me/.local\n/home/me/.local/share\n"
                       "/tmp\n/tmp/empty\n/home/me/.config/Quietlark\n/work\n/home/me/work"));
    uninstall();
    expectOthersFiles();
    const auto after = listFiles(QStringLiteral("/"));
    for (const QString& path : before) {
        EXPECT_TRUE(after.contains(path) || path.contains(QStringLiteral("uietlark")))
            << path.toStdString();
    }
}

}  // namespace
}  // namespace quietlark
