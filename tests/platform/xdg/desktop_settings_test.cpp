#include "platform/linux/xdg/desktop_settings.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "support/wait.h"

namespace quietlark {
namespace {

class DesktopSettingsTest : public ::testing::Test {
protected:
    /// A program that writes its arguments to `arguments`.
    void install(const char* program) {
        QFile file(programs.filePath(QLatin1String(program)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\necho \"$0\" \"$@\" >'" + log.toUtf8() + ".part'\n/bin/mv '" +
                   log.toUtf8() + ".part' '" + log.toUtf8() + "'\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /// What would be run on `desktop`, without the folder of the program.
    std::string on(const char* desktop, SettingsPane pane) {
        const DesktopSettings settings(QLatin1String(desktop), help, {programs.path()});
        const auto command = settings.commandFor(pane);
        if (!command) return "nothing";
        return command->join(QLatin1Char(' ')).remove(programs.path() + u'/').toStdString();
    }

    QTemporaryDir programs;
    const QString log = programs.filePath(QStringLiteral("log"));
    const QString help = QStringLiteral(QUIETLARK_SHARE "/quietlark/help.html");
};

TEST_F(DesktopSettingsTest, EachDesktopOpensItsOwnSettings) {
    for (const char* program : {"gnome-control-center", "systemsettings"})
        install(program);
    EXPECT_EQ(on("GNOME", SettingsPane::Microphone), "gnome-control-center sound");
    EXPECT_EQ(on("KDE", SettingsPane::Microphone), "systemsettings kcm_pulseaudio");
}

TEST_F(DesktopSettingsTest, ADesktopWithSeveralNamesIsKnownByAnyOfThem) {
    install("gnome-control-center");
    EXPECT_EQ(on("ubuntu:GNOME", SettingsPane::Microphone), "gnome-control-center sound");
}

TEST_F(DesktopSettingsTest, AnotherDesktopsSettingsAreLeftAlone) {
    install("gnome-control-center");
    install("pavucontrol");
    EXPECT_EQ(on("XFCE", SettingsPane::Microphone), "pavucontrol --tab=4");
}

TEST_F(DesktopSettingsTest, WithoutSettingsThePageOfHelpOpensAtItsPlace) {
    install("xdg-open");
    const std::string page = "xdg-open file://" + help.toStdString();
    EXPECT_EQ(on("", SettingsPane::Microphone), page + "#microphone");
    EXPECT_EQ(on("GNOME", SettingsPane::InputMonitoring), page + "#input-monitoring");
    EXPECT_EQ(on("KDE", SettingsPane::Accessibility), page + "#accessibility");
    EXPECT_EQ(on("", SettingsPane::LocalNetwork), page + "#local-network");
    EXPECT_EQ(on("", SettingsPane::LoginItems), page + "#login-items");
}

TEST_F(DesktopSettingsTest, NoDesktopHasSettingsThatAllowAServiceButThePageOfHelpDoes) {
    for (const char* program :
         {"xdg-open", "gnome-tweaks", "systemsettings", "systemsettings5", "xfce4-session-settings",
          "cinnamon-settings", "mate-session-properties", "lxqt-config-session"})
        install(program);
    for (const char* desktop : {"GNOME", "KDE", "XFCE", "X-Cinnamon", "MATE", "LXQt"}) {
        EXPECT_EQ(on(desktop, SettingsPane::LoginItems),
                  "xdg-open file://" + help.toStdString() + "#login-items");
    }
}

TEST_F(DesktopSettingsTest, ThePageOfHelpHasAPlaceForEachPane) {
    QFile page(help);
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QByteArray text = page.readAll();
    for (const char* place :
         {"microphone", "input-monitoring", "accessibility", "local-network", "login-items"})
        EXPECT_TRUE(text.contains(QByteArray("id=\"") + place + '"')) << place;
}

TEST_F(DesktopSettingsTest, WhereNothingIsInstalledNothingOpens) {
    EXPECT_EQ(on("GNOME", SettingsPane::Microphone), "nothing");
}

TEST_F(DesktopSettingsTest, OpeningStartsTheProgram) {
    install("pavucontrol");
    DesktopSettings settings(QString(), help, {programs.path()});
    settings.open(SettingsPane::Microphone);
    EXPECT_TRUE(waitUntil([this] { return QFile::exists(log); }));
    QFile file(log);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().endsWith("pavucontrol --tab=4\n"));
}

}  // namespace
}  // namespace quietlark
