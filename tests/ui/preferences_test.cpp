#include "ui/hotkey_capture_view.h"
#include "ui/windows_fixture.h"

namespace quietlark {
namespace {

constexpr KeyCode d = 2;

class PreferencesTest : public WindowsFixture {
protected:
    ~PreferencesTest() override { closeAll(); }

    PrefsView& prefs() { return *open(Kind::preferences).findChild<PrefsView*>(); }

    QList<HotkeyCaptureView*> fields() {
        QList<HotkeyCaptureView*> visible = shown().findChildren<HotkeyCaptureView*>();
        visible.removeIf([](const HotkeyCaptureView* field) { return !field->isVisible(); });
        return visible;
    }
};

TEST_F(PreferencesTest, PreferencesComeForwardOnTheTabThatWasLastSelected) {
    prefs().select(PrefsTab::hotkey);
    shown().close();
    EXPECT_EQ(prefs().selected(), PrefsTab::hotkey);
}

TEST_F(PreferencesTest, TheServerTabIsShownWhereItIsAskedFor) {
    prefs();
    windows().showServerTab();
    EXPECT_EQ(prefs().selected(), PrefsTab::server);
}

TEST_F(PreferencesTest, WhereAServerIsToBeChosenTheKeyboardChoosesIt) {
    windows().showServerTab();
    ASSERT_TRUE(shown().isActiveWindow());
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Servers on your local network"));
}

TEST_F(PreferencesTest, TheToggleHotkeyCanBeClearedAndTheHoldHotkeyCannot) {
    Config config = manualRemote();
    config.toggleHotkey = text("f5");
    saved(config);
    prefs().select(PrefsTab::hotkey);
    for (HotkeyCaptureView* field : fields()) {
        field->click();
        keyCapture.press(key_code::deleteBackward);
    }
    EXPECT_EQ(Config::load(files.config).hotkey, config.hotkey);
    EXPECT_EQ(Config::load(files.config).toggleHotkey, QString());
}

TEST_F(PreferencesTest, ACapturedHotkeyIsStoredAtOnce) {
    prefs().select(PrefsTab::hotkey);
    QTest::mouseClick(fields().first(), Qt::LeftButton);
    EXPECT_TRUE(reads("(Esc to cancel, Delete to clear)"));
    keyCapture.press(d, modifier::control | modifier::shift);
    EXPECT_FALSE(reads("(Esc to cancel, Delete to clear)"));
    EXPECT_EQ(Config::load(files.config).hotkey, text("ctrl+shift+d"));
}

TEST_F(PreferencesTest, ClickingTheSecondFieldEndsTheCaptureOfTheFirst) {
    prefs().select(PrefsTab::hotkey);
    fields().first()->click();
    fields().last()->click();
    EXPECT_FALSE(fields().first()->capture().isCapturing());
    EXPECT_TRUE(fields().last()->capture().isCapturing());
}

TEST_F(PreferencesTest, ACaptureEndsWithItsWindow) {
    prefs().select(PrefsTab::hotkey);
    fields().first()->click();
    shown().close();
    EXPECT_FALSE(keyCapture.holdsKeys());
}

TEST_F(PreferencesTest, TheLaunchSwitchGoesBackWhereTheDesktopRefuses) {
    loginItem.failure = ServiceError{text("No.")};
    prefs();
    auto* launch = qobject_cast<QCheckBox*>(button("Launch at login"));
    launch->click();
    EXPECT_FALSE(launch->isChecked());
}

TEST_F(PreferencesTest, TheChoiceOfAServerEndsWithTheSummary) {
    saved(manualRemote());
    windows().showServerTab();
    button("Change Server…")->click();
    EXPECT_TRUE(reads("Where should Quietlark transcribe?"));
    button("Cancel")->click();
    EXPECT_TRUE(button("Change Server…"));
}

TEST_F(PreferencesTest, AChoiceThatIsLeftOpenIsForgottenWithTheWindow) {
    saved(manualRemote());
    windows().showServerTab();
    button("Change Server…")->click();
    shown().close();
    windows().showServerTab();
    EXPECT_TRUE(button("Change Server…"));
}

TEST_F(PreferencesTest, AServerThatIsChosenElsewhereEndsTheChoiceAndTheNextCanBeCancelled) {
    windows().showServerTab();
    EXPECT_FALSE(button("Cancel"));
    state().setConfig(manualRemote());
    button("Change Server…")->click();
    button("Cancel")->click();
    EXPECT_TRUE(button("Change Server…"));
}

TEST_F(PreferencesTest, AServerThatIsGivenUpElsewhereLeavesAChoiceThatCannotBeCancelled) {
    saved(manualRemote());
    windows().showServerTab();
    button("Change Server…")->click();
    state().setConfig(unconfigured());
    EXPECT_TRUE(reads("Where should Quietlark transcribe?"));
    EXPECT_FALSE(button("Cancel"));
}

}  // namespace
}  // namespace quietlark
