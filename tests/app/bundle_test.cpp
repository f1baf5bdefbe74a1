#include "app/bundle.h"

#include <gtest/gtest.h>

#include "fakes/fake_installation.h"
#include "fakes/fake_user_defaults.h"

namespace quietlark {
namespace {

const QString key = QStringLiteral("lastRegisteredExecutableFingerprint");

class BundleTest : public ::testing::Test {
protected:
    bool isInApplicationsAt(const char* path) {
        installation.path = QString::fromLatin1(path);
        return bundle.isInApplications();
    }

    std::string fingerprintOf(double modified) {
        installation.modified = modified;
        return bundle.executableFingerprint().value_or(QString()).toStdString();
    }

    FakeInstallation installation;
    FakeUserDefaults defaults;
    Bundle bundle{installation, defaults};
};

TEST_F(BundleTest, ABundleInASubfolderOfAnApplicationRootPasses) {
    EXPECT_TRUE(isInApplicationsAt("/opt/tools/Quietlark"));
    EXPECT_TRUE(isInApplicationsAt("/home/me/.local/opt/Quietlark"));
    EXPECT_TRUE(isInApplicationsAt("/usr/bin/quietlark"));
}

TEST_F(BundleTest, ABundleInAnotherFolderOfTheUsersHomeDoesNot) {
    EXPECT_FALSE(isInApplicationsAt("/home/me/Applications/Quietlark"));
    EXPECT_FALSE(isInApplicationsAt("/home/me/opt/Quietlark"));
    EXPECT_FALSE(isInApplicationsAt("/home/me/usr/Quietlark"));
}

TEST_F(BundleTest, ThePrefixIsExactAndCaseSensitive) {
    EXPECT_FALSE(isInApplicationsAt("/Opt/Quietlark"));
    EXPECT_FALSE(isInApplicationsAt("/optional/Quietlark"));
    EXPECT_FALSE(isInApplicationsAt("/opt"));
}

TEST_F(BundleTest, TheFingerprintIsADecimalNumberWithAFraction) {
    EXPECT_EQ(fingerprintOf(1'700'000'000), "1700000000.0");
    EXPECT_EQ(fingerprintOf(1'700'000'000.25), "1700000000.25");
    EXPECT_EQ(fingerprintOf(1'752'345'678.123456), "1752345678.123456");
}

TEST_F(BundleTest, TheFingerprintIsAbsentWithoutADate) {
    installation.modified.reset();
    EXPECT_FALSE(bundle.executableFingerprint().has_value());
}

TEST_F(BundleTest, OnlyTheExecutableThatWasRememberedIsTheRegisteredOne) {
    EXPECT_FALSE(bundle.isRegisteredExecutable());
    bundle.rememberRegisteredExecutable();
    EXPECT_TRUE(bundle.isRegisteredExecutable());
    installation.modified = 1'700'000'001;
    EXPECT_FALSE(bundle.isRegisteredExecutable());
}

TEST_F(BundleTest, AnUnknownExecutableCountsAsTheSame) {
    bundle.rememberRegisteredExecutable();
    installation.modified.reset();
    EXPECT_TRUE(bundle.isRegisteredExecutable());
}

TEST_F(BundleTest, RememberingAnUnknownExecutableForgetsTheOneBefore) {
    bundle.rememberRegisteredExecutable();
    EXPECT_EQ(defaults.string(key), QStringLiteral("1700000000.25"));
    installation.modified.reset();
    bundle.rememberRegisteredExecutable();
    EXPECT_FALSE(defaults.string(key).has_value());
}

}  // namespace
}  // namespace quietlark
