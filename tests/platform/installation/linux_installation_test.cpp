#include "platform/linux/installation/linux_installation.h"

#include <QFile>
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
