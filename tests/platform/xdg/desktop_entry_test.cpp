#include "platform/linux/xdg/desktop_entry.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

std::string quoted(const char* argument) {
    return quotedForExec(QString::fromUtf8(argument)).toStdString();
}

TEST(DesktopEntryTest, AnArgumentIsQuoted) {
    EXPECT_EQ(quoted("/opt/My Programs/quietlark"), "\"/opt/My Programs/quietlark\"");
}

TEST(DesktopEntryTest, APercentSignIsDoubledSinceItBeginsAFieldCode) {
    EXPECT_EQ(quoted("/100%f"), "\"/100%%f\"");
}

TEST(DesktopEntryTest, WhatTheShellKnowsIsEscapedAndTheEscapeOnceMore) {
    EXPECT_EQ(quoted("a\"b`c$d"), R"("a\\"b\\`c\\$d")");
}

TEST(DesktopEntryTest, ABackslashBecomesFour) {
    EXPECT_EQ(quoted("a\\b"), R"("a\\\\b")");
}

TEST(DesktopEntryTest, AValueIsFoundInItsGroup) {
    const QByteArray file = "# x\n[Other]\nA=1\n[Desktop Entry]\n#A=2\nA = 3\n";
    EXPECT_EQ(desktopEntryValue(file, QStringLiteral("A")), QStringLiteral("3"));
}

TEST(DesktopEntryTest, AKeyThatIsNotThereHasNoValue) {
    EXPECT_EQ(desktopEntryValue("[Desktop Entry]\nAB=1\n", QStringLiteral("A")), std::nullopt);
    EXPECT_EQ(desktopEntryValue("", QStringLiteral("A")), std::nullopt);
}

}  // namespace
}  // namespace quietlark
