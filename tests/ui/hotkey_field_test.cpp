#include "hotkeys/hotkey_display.h"
#include "ui/hotkey_capture_view.h"
#include "ui/shown_wording.h"
#include "ui/windows_fixture.h"

namespace quietlark {
namespace {

class HotkeyFieldTest : public WindowsFixture {
protected:
    ~HotkeyFieldTest() override { closeAll(); }

    HotkeyCaptureView& fieldFor(const QString& hotkey) {
        Config config = manualRemote();
        config.hotkey = hotkey;
        saved(config);
        open(Kind::preferences).findChild<PrefsView*>()->select(PrefsTab::hotkey);
        return *shown().findChild<HotkeyCaptureView*>();
    }
};

TEST_F(HotkeyFieldTest, AHotkeyOfBlanksIsNone) {
    EXPECT_EQ(fieldFor(text("  ")).accessibleName(), text("Hold to dictate: Click to set"));
    EXPECT_TRUE(reads("Click to set"));
}

TEST_F(HotkeyFieldTest, WhatIsNoHotkeyIsShortenedToTheRoomThereIs) {
    const QString spec(200, u'x');
    HotkeyCaptureView& field = fieldFor(spec);
    const auto* label = field.findChild<QLabel*>();
    EXPECT_TRUE(label->text().contains(u'…'));
    EXPECT_LE(label->sizeHint().width(), field.width());
    EXPECT_TRUE(field.accessibleName().endsWith(spec));
}

TEST(HotkeyWordingTest, ModifiersAloneAreJoinedToNothing) {
    const ShownWording wording(ShownWording::Length::usual);
    EXPECT_EQ(HotkeyDisplay::display(QStringLiteral("cmd+alt")), QStringLiteral("Alt+Super"));
    EXPECT_EQ(HotkeyDisplay::display(QStringLiteral("alt+f5")), QStringLiteral("Alt+F5"));
}

}  // namespace
}  // namespace quietlark
