#include <functional>
#include <memory>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_user_defaults.h"
#include "platform/qt/settings_user_defaults.h"

namespace quietlark {
namespace {

const QString key = QStringLiteral("lastRegisteredExecutableFingerprint");

template <typename Defaults>
std::unique_ptr<UserDefaults> make(const QString& path);

template <>
std::unique_ptr<UserDefaults> make<FakeUserDefaults>(const QString&) {
    return std::make_unique<FakeUserDefaults>();
}

template <>
std::unique_ptr<UserDefaults> make<SettingsUserDefaults>(const QString& path) {
    return std::make_unique<SettingsUserDefaults>(path);
}

template <typename Defaults>
class UserDefaultsContractTest : public ::testing::Test {
protected:
    QTemporaryDir directory;
    std::unique_ptr<UserDefaults> defaults =
        make<Defaults>(directory.filePath(QStringLiteral("Quietlark/defaults.ini")));
};

using Adapters = ::testing::Types<FakeUserDefaults, SettingsUserDefaults>;
TYPED_TEST_SUITE(UserDefaultsContractTest, Adapters);

TYPED_TEST(UserDefaultsContractTest, WhatWasNeverSetIsAbsent) {
    EXPECT_FALSE(this->defaults->string(key).has_value());
}

TYPED_TEST(UserDefaultsContractTest, WhatWasSetLastIsKeptAsItIs) {
    this->defaults->set(key, QStringLiteral("one"));
    this->defaults->set(key, QStringLiteral("1700000000.0, \"ünd\" mehr"));
    EXPECT_EQ(this->defaults->string(key), QStringLiteral("1700000000.0, \"ünd\" mehr"));
}

TYPED_TEST(UserDefaultsContractTest, AnEmptyValueIsAValue) {
    this->defaults->set(key, QStringLiteral(""));
    EXPECT_EQ(this->defaults->string(key), QStringLiteral(""));
}

TYPED_TEST(UserDefaultsContractTest, WhatWasRemovedIsAbsentAndRemovingItAgainIsHarmless) {
    this->defaults->set(key, QStringLiteral("one"));
    this->defaults->remove(key);
    this->defaults->remove(key);
    EXPECT_FALSE(this->defaults->string(key).has_value());
}

TYPED_TEST(UserDefaultsContractTest, OnceAllIsRemovedNothingIsLeftAndAllCanBeSetAgain) {
    this->defaults->set(key, QStringLiteral("one"));
    this->defaults->removeAll();
    EXPECT_FALSE(this->defaults->string(key).has_value());
    this->defaults->removeAll();
    this->defaults->set(key, QStringLiteral("two"));
    EXPECT_EQ(this->defaults->string(key), QStringLiteral("two"));
}

class SettingsUserDefaultsTest : public ::testing::Test {
protected:
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("defaults.ini"));
};

TEST_F(SettingsUserDefaultsTest, TheNextRunFindsWhatWasSetEvenAfterACrash) {
    SettingsUserDefaults stillRunning(path);
    stillRunning.set(key, QStringLiteral("1700000000.25"));
    EXPECT_EQ(SettingsUserDefaults(path).string(key), QStringLiteral("1700000000.25"));
}

TEST_F(SettingsUserDefaultsTest, ReadingCreatesNoFile) {
    EXPECT_FALSE(SettingsUserDefaults(path).string(key).has_value());
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(SettingsUserDefaultsTest, OnceAllIsRemovedThereIsNoFileAlsoWhenTheProgramEnds) {
    {
        SettingsUserDefaults defaults(path);
        defaults.set(key, QStringLiteral("one"));
        defaults.removeAll();
        EXPECT_FALSE(QFile::exists(path));
    }
    EXPECT_TRUE(QDir(directory.path()).isEmpty());
}

TEST_F(SettingsUserDefaultsTest, RemovingAllWhereALinkLeadsElsewhereLeavesThat) {
    const QString elsewhere = directory.filePath(QStringLiteral("thesis"));
    QFile file(elsewhere);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\nkey=value\n");
    file.close();
    ASSERT_TRUE(QFile::link(elsewhere, path));
    SettingsUserDefaults(path).removeAll();
    EXPECT_FALSE(QFileInfo(path).isSymLink());
    EXPECT_EQ(QFileInfo(elsewhere).size(), 20);
}

TEST_F(SettingsUserDefaultsTest, AFileThatIsNoneOfOursReadsAsEmpty) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("\x01\x02 nonsense [[[\n");
    file.close();
    EXPECT_FALSE(SettingsUserDefaults(path).string(key).has_value());
}

}  // namespace
}  // namespace quietlark
