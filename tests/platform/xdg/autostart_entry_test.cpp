#include "platform/linux/xdg/autostart_entry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "peers/child_process.h"

namespace quietlark {
namespace {

class AutostartEntryTest : public ::testing::Test {
protected:
    void write(const QByteArray& text) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QByteArray read() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    ServiceStatus statusOf(const QByteArray& text) {
        write(text);
        return entry.status();
    }

    QTemporaryDir config;
    const QString path = config.filePath(QStringLiteral("autostart/net.quietlark.app.desktop"));
    AutostartEntry entry{config.path(), QStringLiteral("/opt/Quietlark/bin/quietlark")};
};

TEST_F(AutostartEntryTest, AnEntryThatIsSwitchedOffIsForgotten) {
    entry.forget();
    ASSERT_TRUE(entry.registerItem().has_value());
    write(read() + "Hidden=true\n");
    ASSERT_EQ(entry.status(), ServiceStatus::requiresApproval);
    entry.forget();
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(AutostartEntryTest, AnEntryOfAnotherInstallationIsNotForgotten) {
    for (const QString& other : {QStringLiteral("/opt/Other/bin/quietlark"),
                                 QStringLiteral("/opt/Quietlark/bin/quietlark2")}) {
        AutostartEntry another(config.path(), other);
        ASSERT_TRUE(another.registerItem().has_value());
        entry.forget();
        EXPECT_TRUE(QFile::exists(path));
    }
}

TEST_F(AutostartEntryTest, NoEntryIsNotRegistered) {
    EXPECT_EQ(entry.status(), ServiceStatus::notRegistered);
}

TEST_F(AutostartEntryTest, AnEntryIsEnabled) {
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=quietlark\n"), ServiceStatus::enabled);
}

TEST_F(AutostartEntryTest, AHiddenEntryRequiresApproval) {
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=quietlark\nHidden=true\n"),
              ServiceStatus::requiresApproval);
}

TEST_F(AutostartEntryTest, AnEntryThatTheDesktopHasSwitchedOffRequiresApproval) {
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=quietlark\nX-GNOME-Autostart-enabled = false\n"),
              ServiceStatus::requiresApproval);
}

TEST_F(AutostartEntryTest, AKeyOfAnotherGroupDoesNotCount) {
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=quietlark\n[Desktop Action x]\nHidden=true\n"),
              ServiceStatus::enabled);
}

TEST_F(AutostartEntryTest, RegisteringWritesAnEntryThatIsValid) {
    ASSERT_TRUE(entry.registerItem());
    EXPECT_EQ(entry.status(), ServiceStatus::enabled);
    ChildProcess validator(QStringLiteral("desktop-file-validate"), {path});
    EXPECT_EQ(validator.readAll(), QByteArray(""));
    EXPECT_EQ(validator.exitCode(), 0);
}

TEST_F(AutostartEntryTest, APathOfOddCharactersIsAValidEntryToo) {
    AutostartEntry odd(config.path(), QStringLiteral("/opt/a b$c`d\"e\\f%g/quietlark"));
    ASSERT_TRUE(odd.registerItem());
    ChildProcess validator(QStringLiteral("desktop-file-validate"), {path});
    EXPECT_EQ(validator.readAll(), QByteArray(""));
    EXPECT_EQ(validator.exitCode(), 0);
}

TEST_F(AutostartEntryTest, RegisteringSwitchesAHiddenEntryOnAgain) {
    write("[Desktop Entry]\nExec=elsewhere\nHidden=true\n");
    ASSERT_TRUE(entry.registerItem());
    EXPECT_EQ(entry.status(), ServiceStatus::enabled);
    EXPECT_TRUE(read().contains("Exec=\"/opt/Quietlark/bin/quietlark\"\n"));
}

TEST_F(AutostartEntryTest, UnregisteringRemovesTheEntryAndNoOther) {
    ASSERT_TRUE(entry.registerItem());
    const QString other = config.filePath(QStringLiteral("autostart/other.desktop"));
    ASSERT_TRUE(QFile::copy(path, other));
    ASSERT_TRUE(entry.unregisterItem());
    EXPECT_EQ(entry.status(), ServiceStatus::notRegistered);
    EXPECT_TRUE(QFile::exists(other));
}

TEST_F(AutostartEntryTest, AFolderThatCannotBeMadeFailsWithASentence) {
    QFile inTheWay(config.filePath(QStringLiteral("autostart")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const auto result = entry.registerItem();
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().localizedDescription.contains(config.path()));
}

TEST_F(AutostartEntryTest, NothingButTheEntryIsLeftBehind) {
    ASSERT_TRUE(entry.registerItem());
    ASSERT_TRUE(entry.registerItem());
    const QDir folder(QFileInfo(path).path());
    EXPECT_EQ(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

}  // namespace
}  // namespace quietlark
