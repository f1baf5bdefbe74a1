#include "hotkeys/hold_hotkey.h"

#include <QStringList>
#include <gtest/gtest.h>

#include "fakes/fake_key_event_source.h"
#include "fakes/fake_scheduler.h"

namespace quietlark {
namespace {

constexpr KeyCode space = 49;

class HoldHotkeyTest : public ::testing::Test {
protected:
    void watch(const char* spec) {
        hotkey = HoldHotkey::create(
                     QString::fromLatin1(spec), keyboard, scheduler,
                     [this] { reports << QStringLiteral("press"); },
                     [this] { reports << QStringLiteral("release"); })
                     .value();
        hotkey->start();
    }

    void press(KeyCode key) {
        keyboard.press(key);
        scheduler.runPosted();
    }

    void release(KeyCode key) {
        keyboard.release(key);
        scheduler.runPosted();
    }

    std::string reported() { return std::exchange(reports, {}).join(u' ').toStdString(); }

    FakeScheduler scheduler;
    FakeKeyEventSource keyboard;
    QStringList reports;
    std::unique_ptr<HoldHotkey> hotkey;
};

TEST_F(HoldHotkeyTest, ABadSpecGivesNoMonitor) {
    const auto refused = HoldHotkey::create(
        QStringLiteral("cmd+foo"), keyboard, scheduler, [] {}, [] {});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, HotkeyParse::ParseError::Kind::unknownToken);
}

TEST_F(HoldHotkeyTest, AModifierAloneIsHeldAndLetGo) {
    watch("fn");
    press(key_code::function);
    EXPECT_EQ(reported(), "press");
    press(space);
    release(space);
    EXPECT_EQ(reported(), "");
    release(key_code::function);
    EXPECT_EQ(reported(), "release");
}

TEST_F(HoldHotkeyTest, TheLastMissingPartReportsThePressAndTheFirstToGoTheRelease) {
    watch("cmd+space");
    press(space);
    EXPECT_EQ(reported(), "");
    press(key_code::command);
    EXPECT_EQ(reported(), "press");
    release(key_code::command);
    EXPECT_EQ(reported(), "release");
    release(space);
    EXPECT_EQ(reported(), "");
}

TEST_F(HoldHotkeyTest, FurtherModifiersDoNotSpoilIt) {
    watch("cmd+space");
    press(key_code::shift);
    press(key_code::command);
    press(space);
    EXPECT_EQ(reported(), "press");
    release(key_code::shift);
    EXPECT_EQ(reported(), "");
}

TEST_F(HoldHotkeyTest, AKeyWithoutModifiersIsAHotkeyToo) {
    watch("space");
    press(space);
    release(space);
    press(space);
    EXPECT_EQ(reported(), "press release press");
}

TEST_F(HoldHotkeyTest, AutoRepeatReportsNothingNew) {
    watch("space");
    press(space);
    press(space);
    press(space);
    EXPECT_EQ(reported(), "press");
}

TEST_F(HoldHotkeyTest, OtherKeysAreIgnored) {
    watch("cmd+space");
    press(key_code::command);
    press(0);
    EXPECT_EQ(reported(), "");
}

TEST_F(HoldHotkeyTest, WorksInOurOwnWindowsToo) {
    keyboard.setFocus(KeyEventSource::Scope::Local);
    watch("cmd+space");
    press(key_code::command);
    press(space);
    EXPECT_EQ(reported(), "press");
}

TEST_F(HoldHotkeyTest, NothingIsReportedBeforeTheMainQueueRuns) {
    watch("space");
    keyboard.press(space);
    EXPECT_EQ(reported(), "");
    scheduler.runPosted();
    EXPECT_EQ(reported(), "press");
}

TEST_F(HoldHotkeyTest, StoppingWhileHeldReleasesExactlyOnceAndAtOnce) {
    watch("cmd+space");
    press(key_code::command);
    press(space);
    hotkey->stop();
    EXPECT_EQ(reported(), "press release");
    hotkey->stop();
    scheduler.runPosted();
    EXPECT_EQ(reported(), "");
}

TEST_F(HoldHotkeyTest, DroppingItWhileHeldReleases) {
    watch("fn");
    press(key_code::function);
    hotkey.reset();
    EXPECT_EQ(reported(), "press release");
}

TEST_F(HoldHotkeyTest, APressStillQueuedWhenItStopsIsNotReportedAfterTheRelease) {
    watch("fn");
    keyboard.press(key_code::function);
    hotkey->stop();
    scheduler.runPosted();
    EXPECT_EQ(reported(), "release");
}

TEST_F(HoldHotkeyTest, NothingIsLostWhileTheMainQueueIsBusy) {
    watch("fn");
    keyboard.press(key_code::function);
    keyboard.release(key_code::function);
    keyboard.press(key_code::function);
    scheduler.runPosted();
    EXPECT_EQ(reported(), "press release press");
}

TEST_F(HoldHotkeyTest, AReleaseStillQueuedWhenItIsDroppedArrives) {
    watch("fn");
    press(key_code::function);
    keyboard.release(key_code::function);
    hotkey.reset();
    scheduler.runPosted();
    EXPECT_EQ(reported(), "press release");
}

TEST_F(HoldHotkeyTest, StoppingForgetsWhatWasHeld) {
    watch("cmd+space");
    press(key_code::command);
    hotkey->stop();
    release(key_code::command);
    hotkey->start();
    press(space);
    EXPECT_EQ(reported(), "");
}

TEST_F(HoldHotkeyTest, StartingTwiceNeverDoublesTheMonitors) {
    watch("space");
    const auto once = keyboard.monitorCount();
    hotkey->start();
    EXPECT_EQ(keyboard.monitorCount(), once);
    hotkey->stop();
    EXPECT_EQ(keyboard.monitorCount(), 0u);
}

}  // namespace
}  // namespace quietlark
