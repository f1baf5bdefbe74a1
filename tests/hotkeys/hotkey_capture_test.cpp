#include "hotkeys/hotkey_capture.h"

#include <gtest/gtest.h>

#include "fakes/fake_key_capture.h"
#include "fakes/fake_key_event_source.h"
#include "fakes/fake_scheduler.h"
#include "hotkeys/hold_hotkey.h"
#include "hotkeys/uncaptured_key_events.h"

namespace quietlark {
namespace {

constexpr KeyCode d = 2;
constexpr KeyCode keypadEnter = 76;

class HotkeyCaptureTest : public ::testing::Test {
protected:
    HotkeyCaptureTest() {
        hold.setSpec(QStringLiteral("fn"));
        toggle.setSpec(QStringLiteral("f5"));
        QObject::connect(&hold, &HotkeyCapture::edited, [this] { ++edits; });
        QObject::connect(&toggle, &HotkeyCapture::edited, [this] { ++edits; });
    }

    FakeKeyCapture keys;
    HotkeyCaptureCoordinator coordinator{keys};
    HotkeyCapture hold{coordinator, HotkeyCapture::Empty::forbidden};
    HotkeyCapture toggle{coordinator, HotkeyCapture::Empty::allowed};
    int edits = 0;
};

TEST_F(HotkeyCaptureTest, TheNextKeyPressBecomesTheHotkey) {
    hold.begin();
    EXPECT_TRUE(keys.press(d, modifier::control));
    EXPECT_EQ(hold.spec(), QStringLiteral("ctrl+d"));
    EXPECT_FALSE(hold.isCapturing());
    EXPECT_EQ(edits, 1);
}

TEST_F(HotkeyCaptureTest, KeysAreLeftToTheWindowsAfterwards) {
    hold.begin();
    keys.press(d);
    EXPECT_FALSE(keys.press(d));
}

TEST_F(HotkeyCaptureTest, DeleteKeepsAHotkeyThatMayNotBeEmptyAndClearsAnother) {
    for (const KeyCode key : {key_code::deleteBackward, key_code::deleteForward}) {
        toggle.setSpec(QStringLiteral("f5"));
        hold.begin();
        keys.press(key);
        EXPECT_FALSE(hold.isCapturing());
        EXPECT_EQ(hold.spec(), QStringLiteral("fn"));
        toggle.begin();
        keys.press(key);
        EXPECT_FALSE(toggle.isCapturing());
        EXPECT_EQ(toggle.spec(), QString());
    }
}

TEST_F(HotkeyCaptureTest, EscapeKeepsTheHotkey) {
    toggle.begin();
    keys.press(key_code::escape);
    EXPECT_EQ(toggle.spec(), QStringLiteral("f5"));
    EXPECT_FALSE(toggle.isCapturing());
    EXPECT_EQ(edits, 0);
}

TEST_F(HotkeyCaptureTest, TheSecondFieldTakesTheKeysFromTheFirst) {
    hold.begin();
    toggle.begin();
    EXPECT_FALSE(hold.isCapturing());
    EXPECT_TRUE(toggle.isCapturing());
    keys.press(d);
    EXPECT_EQ(hold.spec(), QStringLiteral("fn"));
    EXPECT_EQ(toggle.spec(), QStringLiteral("d"));
}

TEST_F(HotkeyCaptureTest, AKeyWithoutATokenKeepsTheFieldCapturing) {
    hold.begin();
    keys.press(keypadEnter);
    EXPECT_TRUE(hold.isCapturing());
    keys.press(d);
    EXPECT_EQ(hold.spec(), QStringLiteral("d"));
}

TEST_F(HotkeyCaptureTest, AFieldThatGoesAwayLeavesTheKeys) {
    {
        HotkeyCapture passing(coordinator, HotkeyCapture::Empty::allowed);
        passing.begin();
    }
    EXPECT_FALSE(keys.press(d));
}

TEST_F(HotkeyCaptureTest, AFieldThatHasLostTheKeysDoesNotTakeThemFromTheOther) {
    hold.begin();
    toggle.begin();
    hold.cancel();
    EXPECT_TRUE(toggle.isCapturing());
    EXPECT_TRUE(keys.press(d));
}

TEST_F(HotkeyCaptureTest, NoHotkeyGoesOffForAKeyThatIsTaken) {
    FakeKeyEventSource keyboard;
    UncapturedKeyEvents uncaptured(keyboard, keys);
    int seen = 0;
    const auto monitor = uncaptured.addMonitor(KeyEventSource::Scope::Local,
                                               key_event_mask::keyDown | key_event_mask::keyUp,
                                               [&seen](const KeyEvent&) { ++seen; });
    keyboard.setFocus(KeyEventSource::Scope::Local);
    hold.begin();
    keyboard.press(d);
    EXPECT_EQ(seen, 0);
    keyboard.release(d);
    EXPECT_EQ(seen, 1);
    hold.cancel();
    keyboard.press(d);
    EXPECT_EQ(seen, 2);
}

class HotkeyDuringCaptureTest : public HotkeyCaptureTest {
protected:
    HotkeyDuringCaptureTest() {
        keyboard.setFocus(KeyEventSource::Scope::Local);
        hotkey->start();
    }

    void pressModifiers() {
        keyboard.press(key_code::control);
        keyboard.press(key_code::option);
        scheduler.runPosted();
    }
    void releaseModifiers() {
        keyboard.release(key_code::control);
        keyboard.release(key_code::option);
        scheduler.runPosted();
    }

    FakeKeyEventSource keyboard;
    UncapturedKeyEvents uncaptured{keyboard, keys};
    FakeScheduler scheduler;
    int presses = 0;
    int releases = 0;
    std::unique_ptr<HoldHotkey> hotkey = HoldHotkey::create(
                                             QStringLiteral("ctrl+alt"), uncaptured, scheduler,
                                             [this] { ++presses; }, [this] { ++releases; })
                                             .value();
};

TEST_F(HotkeyDuringCaptureTest, AHotkeyOfModifiersAloneIsNotSetOff) {
    toggle.begin();
    pressModifiers();
    EXPECT_EQ(presses, 0);
    keys.press(d, modifier::control | modifier::option);
    keyboard.press(key_code::shift);
    keyboard.release(key_code::shift);
    releaseModifiers();
    EXPECT_EQ(presses, 0);
    pressModifiers();
    EXPECT_EQ(presses, 1);
}

TEST_F(HotkeyDuringCaptureTest, AHotkeyThatIsHeldAlreadyCanBeLetGo) {
    pressModifiers();
    EXPECT_EQ(presses, 1);
    toggle.begin();
    releaseModifiers();
    EXPECT_EQ(releases, 1);
    pressModifiers();
    EXPECT_EQ(presses, 1);
}

}  // namespace
}  // namespace quietlark
