#include "platform/qt_widgets/panel_color.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

const QColor textColor(10, 20, 30);

QColor colorOn(const char* currentDesktop) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, textColor);
    return panelTextColor(palette, QString::fromLatin1(currentDesktop));
}

TEST(PanelColorTest, APanelThatFollowsTheThemeHasTheColourOfItsTexts) {
    for (const char* desktop : {"KDE", "XFCE", "LXQt", "GNOME-Classic:GNOME", ""})
        EXPECT_EQ(colorOn(desktop), textColor) << desktop;
}

TEST(PanelColorTest, APanelThatIsAlwaysDarkHasWhite) {
    for (const char* desktop : {"GNOME", "ubuntu:GNOME", "Unity"})
        EXPECT_EQ(colorOn(desktop), QColor(Qt::white)) << desktop;
}

}  // namespace
}  // namespace quietlark
