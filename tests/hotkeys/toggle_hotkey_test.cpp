#include "hotkeys/toggle_hotkey.h"

#include <gtest/gtest.h>

#include "fakes/fake_key_event_source.h"
#include "fakes/fake_scheduler.h"

namespace quietlark {
namespace {

constexpr KeyCode d = 2;

class ToggleHotkeyTest : public ::testing::Test {
protected:
    void watch(const char* spec) {
        hotkey = ToggleHotkey::create(QString::fromLatin1(spec), keyboard, scheduler, [this] {
                     ++toggles;
                 }).value();
        hotkey->start();
    }

    void press(KeyCode key) {
        keyboard.press(key);
        scheduler.runPosted();
    }

    FakeScheduler scheduler;
    FakeKeyEventSource keyboard;
    int toggles = 0;
    std::unique_ptr<ToggleHotkey> hotkey;
};

TEST_F(ToggleHotkeyTest, ABadSpecGivesNoMonitor) {
    EXPECT_FALSE(ToggleHotkey::create(QStringLiteral("a+b"), keyboard, scheduler, [] {}));
}

TEST_F(ToggleHotkeyTest, EachKeyDownTogglesAutoRepeatsIncluded) {
    watch("ctrl+d");
    press(key_code::control);
    press(d);
    EXPECT_EQ(toggles, 1);
    press(d);
    press(d);
    EXPECT_EQ(toggles, 3);
}

TEST_F(ToggleHotkeyTest, NothingHappensWithoutTheModifiers) {
    watch("ctrl+d");
    press(d);
    EXPECT_EQ(toggles, 0);
}

TEST_F(ToggleHotkeyTest, NothingHappensForOtherKeys) {
    watch("ctrl+d");
    press(key_code::control);
    press(0);
    EXPECT_EQ(toggles, 0);
}

TEST_F(ToggleHotkeyTest, FurtherModifiersDoNotSpoilIt) {
    watch("ctrl+d");
    press(key_code::shift);
    press(key_code::control);
    press(d);
    EXPECT_EQ(toggles, 1);
}

TEST_F(ToggleHotkeyTest, ReleasesDoNotToggle) {
    watch("d");
    press(d);
    keyboard.release(d);
    scheduler.runPosted();
    EXPECT_EQ(toggles, 1);
}

TEST_F(ToggleHotkeyTest, ModifiersAloneNeverToggle) {
    watch("fn");
    press(key_code::function);
    press(d);
    EXPECT_EQ(toggles, 0);
}

TEST_F(ToggleHotkeyTest, TheToggleComesFromTheMainQueue) {
    watch("d");
    keyboard.press(d);
    EXPECT_EQ(toggles, 0);
    scheduler.runPosted();
    EXPECT_EQ(toggles, 1);
}

TEST_F(ToggleHotkeyTest, WorksInOurOwnWindowsToo) {
    keyboard.setFocus(KeyEventSource::Scope::Local);
    watch("d");
    press(d);
    EXPECT_EQ(toggles, 1);
}

TEST_F(ToggleHotkeyTest, StoppedItWatchesNothing) {
    watch("d");
    hotkey->stop();
    EXPECT_EQ(keyboard.monitorCount(), 0u);
    press(d);
    EXPECT_EQ(toggles, 0);
}

TEST_F(ToggleHotkeyTest, StartingTwiceNeverDoublesTheToggle) {
    watch("d");
    hotkey->start();
    press(d);
    EXPECT_EQ(toggles, 1);
}

}  // namespace
}  // namespace quietlark
