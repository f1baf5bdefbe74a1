#include "app/dictation_hotkeys.h"

#include "dictation/dictation_fixture.h"
#include "fakes/fake_key_event_source.h"

namespace quietlark {
namespace {

constexpr KeyCode space = 49;
constexpr KeyCode d = 2;
constexpr KeyCode f5 = 96;

class DictationHotkeysTest : public DictationFixture {
protected:
    DictationHotkeysTest() {
        config.hotkey = QStringLiteral("space");
        config.toggleHotkey = QStringLiteral("d");
        hotkeys.reload(config);
    }

    void press(KeyCode key) {
        keyboard.press(key);
        scheduler.runPosted();
    }

    void release(KeyCode key) {
        keyboard.release(key);
        scheduler.runPosted();
    }

    FakeKeyEventSource keyboard;
    DictationHotkeys hotkeys{dictation, keyboard, scheduler};
};

TEST_F(DictationHotkeysTest, HoldingRecordsAndLettingGoTranscribes) {
    press(space);
    EXPECT_EQ(dictation.state().kind, Case::recording);
    microphone.hearTone(4096);
    release(space);
    EXPECT_EQ(dictation.state().kind, Case::transcribing);
}

TEST_F(DictationHotkeysTest, TheToggleStartsAndStops) {
    press(d);
    EXPECT_EQ(dictation.state().kind, Case::recording);
    microphone.hearTone(4096);
    press(d);
    EXPECT_EQ(dictation.state().kind, Case::transcribing);
}

TEST_F(DictationHotkeysTest, TheToggleDoesNothingWhileTranscribing) {
    speak();
    stopSpeaking();
    press(d);
    EXPECT_EQ(dictation.state().kind, Case::transcribing);
}

TEST_F(DictationHotkeysTest, TheToggleStartsANewRecordingAtOnceInErrorAndWhenUnreachable) {
    press(d);
    press(d);
    ASSERT_EQ(dictation.state().kind, Case::error);
    press(d);
    EXPECT_EQ(dictation.state().kind, Case::recording);
    microphone.hearTone(4096);
    config.serverMode = Unconfigured{};
    press(d);
    ASSERT_EQ(dictation.state().kind, Case::unreachable);
    press(d);
    EXPECT_EQ(dictation.state().kind, Case::recording);
}

TEST_F(DictationHotkeysTest, ReloadingReplacesTheHotkeys) {
    config.hotkey = QStringLiteral("f5");
    hotkeys.reload(config);
    press(space);
    EXPECT_EQ(dictation.state().kind, Case::idle);
    press(f5);
    EXPECT_EQ(dictation.state().kind, Case::recording);
}

TEST_F(DictationHotkeysTest, ReloadingEndsTheRecordingOfAHeldHotkey) {
    press(space);
    microphone.hearTone(4096);
    hotkeys.reload(config);
    EXPECT_EQ(dictation.state().kind, Case::transcribing);
}

TEST_F(DictationHotkeysTest, AToggleOfModifiersOnlyDoesNotCount) {
    config.toggleHotkey = QStringLiteral("fn");
    EXPECT_TRUE(hotkeys.reload(config).isEmpty());
    EXPECT_FALSE(hotkeys.hasToggle());
}

TEST_F(DictationHotkeysTest, AnEmptyOrBadSpecMeansNoHotkey) {
    config.hotkey = QStringLiteral("ctrl+nonsense");
    config.toggleHotkey.clear();
    EXPECT_EQ(hotkeys.reload(config),
              QStringList{QStringLiteral("unknown key in hotkey: nonsense")});
    EXPECT_FALSE(hotkeys.hasHold());
    EXPECT_FALSE(hotkeys.hasToggle());
    EXPECT_EQ(keyboard.monitorCount(), 0u);
}

}  // namespace
}  // namespace quietlark
