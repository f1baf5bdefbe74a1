#include "platform/linux/installation/linux_installation.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quietlark {
namespace {

class LinuxInstallationTest : public ::testing::Test {
protected:
    static std::string bundleOf(const char* executable) {
        return LinuxInstallation(QString::fromLatin1(executable), QStringLiteral("/home/me"))
            .bundlePath()
            .toStdString();
    }

    void modifiedAt(time_t seconds, long nanoseconds) {
        QFile file(executable);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const timespec times[] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(futimens(file.handle(), times), 0);
    }

    QTemporaryDir directory;
    const QString executable = directory.filePath(QStringLiteral("quietlark"));
    LinuxInstallation installation{executable, QStringLiteral("/home/me")};
};

TEST_F(LinuxInstallationTest, ABundleIsTheDirectoryAboveBin) {
    EXPECT_EQ(bundleOf("/opt/Quietlark/bin/quietlark"), "/opt/Quietlark");
    EXPECT_EQ(bundleOf("/home/me/.local/opt/Quietlark/bin/quietlark"),
              "/home/me/.local/opt/Quietlark");
}

TEST_F(LinuxInstallationTest, InASharedDirectoryTheBundleIsTheExecutableAlone) {
    for (const char* path :
         {"/bin/quietlark", "/usr/bin/quietlark", "/usr/local/bin/quietlark",
          "/home/me/.local/bin/quietlark", "/home/me/bin/quietlark", "/opt/quietlark"}) {
        EXPECT_EQ(bundleOf(path), path);
    }
}

TEST_F(LinuxInstallationTest, ApplicationsBelongInThreePlaces) {
    EXPECT_EQ(installation.applicationRoots().join(u' '),
              QStringLiteral("/opt/ /home/me/.local/opt/ /usr/"));
}

TEST_F(LinuxInstallationTest, SlashesToSpareMakeNoDifference) {
    const LinuxInstallation spare(QStringLiteral("/home/me/bin/quietlark"),
                                  QStringLiteral("/home/me//"), QStringLiteral("/srv/apps//"));
    EXPECT_EQ(spare.bundlePath(), QStringLiteral("/home/me/bin/quietlark"));
    EXPECT_EQ(spare.applicationRoots().join(u' '),
              QStringLiteral("/opt/ /home/me/.local/opt/ /usr/ /srv/apps/"));
}

TEST_F(LinuxInstallationTest, TheHomeDirectoryMayBeTheRootDirectory) {
    const LinuxInstallation atRoot(QStringLiteral("/.local/opt/Quietlark/bin/quietlark"),
                                   QStringLiteral("/"));
    EXPECT_EQ(atRoot.bundlePath(), QStringLiteral("/.local/opt/Quietlark"));
    EXPECT_EQ(atRoot.applicationRoots().join(u' '), QStringLiteral("/opt/ /.local/opt/ /usr/"));
}

TEST_F(LinuxInstallationTest, NoApplicationsBelongInWhatIsNoFolderForThem) {
    for (const char* further : {"", "/", "//", "/opt/..", "apps", "..", "."}) {
        const LinuxInstallation odd(executable, QStringLiteral("/home/me"),
                                    QString::fromLatin1(further));
        EXPECT_EQ(odd.applicationRoots(), installation.applicationRoots()) << further;
    }
}

/// Where the user's folders are links, the executable's path goes by where they lead.
class LinkedInstallationTest : public LinuxInstallationTest {
protected:
    QString at(const char* path) const {
        return QDir(directory.path()).canonicalPath() + u'/' + QString::fromLatin1(path);
    }
    void link(const char* path, const char* target) const {
        ASSERT_TRUE(QDir().mkpath(at(target)));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(at(path)).path()));
        ASSERT_TRUE(QFile::link(at(target), at(path)));
    }
    QString bundleAt(const char* path) const {
        return LinuxInstallation(at(path), at("home")).bundlePath();
    }
    QStringList roots() const {
        return LinuxInstallation(executable, at("home")).applicationRoots();
    }
};

TEST_F(LinkedInstallationTest, TheHomeDirectory) {
    link("home", "disk");
    ASSERT_TRUE(QDir().mkpath(at("disk/.local/opt")));
    EXPECT_EQ(bundleAt("disk/bin/quietlark"), at("disk/bin/quietlark"));
    EXPECT_EQ(bundleAt("disk/.local/bin/quietlark"), at("disk/.local/bin/quietlark"));
    EXPECT_EQ(bundleAt("disk/.local/opt/Quietlark/bin/quietlark"), at("disk/.local/opt/Quietlark"));
    EXPECT_TRUE(roots().contains(at("home/.local/opt/")));
    EXPECT_TRUE(roots().contains(at("disk/.local/opt/")));
}

TEST_F(LinkedInstallationTest, TheFolderForLocalThings) {
    link("home/.local", "local");
    ASSERT_TRUE(QDir().mkpath(at("local/opt")));
    EXPECT_EQ(bundleAt("local/bin/quietlark"), at("local/bin/quietlark"));
    EXPECT_TRUE(roots().contains(at("local/opt/")));
}

TEST_F(LinkedInstallationTest, TheFolderForApplications) {
    link("home/.local/opt", "applications");
    EXPECT_TRUE(roots().contains(at("applications/")));
    EXPECT_EQ(bundleAt("applications/Quietlark/bin/quietlark"), at("applications/Quietlark"));
}

TEST_F(LinuxInstallationTest, TheIdentifierIsThatOfTheDesktopEntry) {
    EXPECT_EQ(installation.bundleIdentifier(), QStringLiteral("net.quietlark.app"));
}

TEST_F(LinuxInstallationTest, TheModificationDateHasItsFraction) {
    modifiedAt(1'700'000'000, 250'000'000);
    EXPECT_EQ(installation.executableModificationDate(), 1'700'000'000.25);
}

TEST_F(LinuxInstallationTest, AReplacedExecutableHasItsOwnDate) {
    modifiedAt(1'700'000'000, 0);
    modifiedAt(1'700'000'001, 0);
    EXPECT_EQ(installation.executableModificationDate(), 1'700'000'001.0);
}

TEST_F(LinuxInstallationTest, WithoutTheExecutableThereIsNoDate) {
    EXPECT_FALSE(installation.executableModificationDate().has_value());
}

}  // namespace
}  // namespace quietlark
