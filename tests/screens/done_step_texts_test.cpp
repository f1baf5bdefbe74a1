#include "screens/done_step_texts.h"

#include <gtest/gtest.h>

#include "fakes/fake_processor.h"
#include "screens/download_text.h"

namespace quietlark {
namespace {

using Download = ModelDownloader::State::Case;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

QString hintFor(const char* hold, const char* toggle) {
    Config config;
    config.hotkey = text(hold);
    config.toggleHotkey = text(toggle);
    return invocationHint(config);
}

TEST(InvocationHintTest, TheHoldHotkeyIsNamedFirst) {
    EXPECT_EQ(hintFor(" alt+space\n", "f5"), text("hold ⌥+Space"));
    EXPECT_EQ(hintFor(" ", "f5"), text("press F5"));
}

TEST(InvocationHintTest, WithBothHotkeysEmptyItSpeaksOfYourHotkey) {
    EXPECT_EQ(hintFor("", ""), text("press your hotkey"));
}

TEST(SlowMachineNoteTest, ASpeedOfExactlyTheThresholdShowsNoNote) {
    EXPECT_EQ(slowLocalNote(1.5), std::nullopt);
    EXPECT_EQ(slowLocalNote(std::nullopt), std::nullopt);
}

TEST(SlowMachineNoteTest, ASlowMachineIsToldByHowMuch) {
    EXPECT_EQ(slowLocalNote(1.0),
              text("Your machine takes about 1.0x the audio length to transcribe. You can switch "
                   "to a faster server later in Preferences."));
    EXPECT_TRUE(slowLocalNote(0.5)->contains(text("about 2.0x the audio")));
}

TEST(SlowMachineNoteTest, WhatNoMachineTakesIsNotTold) {
    EXPECT_EQ(slowLocalNote(0.0), std::nullopt);
    EXPECT_EQ(slowLocalNote(-0.5), std::nullopt);
}

class SlowRemoteNoteTest : public ::testing::Test {
protected:
    static std::optional<QString> noteFor(std::optional<double> rtf, const char* processor) {
        const FakeProcessor fake(processor);
        const HardwareProfile hardware(fake);
        MDNSBrowser::Entry box{text("Box"), text("box.local"), 8001, {}, rtf, {}};
        return slowRemoteNote(text("Box"), {box}, hardware);
    }
};

TEST_F(SlowRemoteNoteTest, ASlowServerIsComparedWithAFasterComputer) {
    EXPECT_EQ(noteFor(0.5, "Apple M1 Pro"),
              text("Box takes about 2.0x the audio length to transcribe. You can switch to this "
                   "Mac later in Preferences."));
}

TEST_F(SlowRemoteNoteTest, ThereIsNoneForAServerFastEnoughOrOfUnknownSpeed) {
    EXPECT_EQ(noteFor(1.5, "Apple M1 Pro"), std::nullopt);
    EXPECT_EQ(noteFor(std::nullopt, "Apple M1 Pro"), std::nullopt);
    EXPECT_EQ(noteFor(0.0, "Apple M1 Pro"), std::nullopt);
}

TEST_F(SlowRemoteNoteTest, ThereIsNoneOnAComputerOfUnknownSpeed) {
    EXPECT_EQ(noteFor(0.5, "Some Processor"), std::nullopt);
}

TEST_F(SlowRemoteNoteTest, ThereIsNoneForAServerThatIsNotFound) {
    const FakeProcessor fake("Apple M1 Pro");
    EXPECT_EQ(slowRemoteNote(text("Box"), {}, HardwareProfile(fake)), std::nullopt);
}

TEST(DownloadTextTest, EachStateHasItsText) {
    EXPECT_EQ(DownloadText::of({Download::idle}, {}).text, text("Starting download…"));
    EXPECT_EQ(DownloadText::of({Download::downloading}, 0.426).percent, 43);
    EXPECT_TRUE(DownloadText::of({Download::downloading}, {}).showsBar);
    EXPECT_EQ(DownloadText::of({Download::downloading}, {}).percent, std::nullopt);
    EXPECT_EQ(DownloadText::of({Download::paused}, {}).text, text("Paused"));
    EXPECT_EQ(DownloadText::of({Download::failed, text("No disk.")}, {}).text,
              text("Download failed: No disk."));
    EXPECT_EQ(DownloadText::of({Download::ready}, 1.0), DownloadText{});
}

}  // namespace
}  // namespace quietlark
