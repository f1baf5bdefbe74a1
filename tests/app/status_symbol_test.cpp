#include "app/status_symbol.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

using Case = DictationState::Case;

class StatusSymbolTest : public ::testing::Test {
protected:
    StatusSymbolTest() {
        facts.onboardingComplete = true;
        facts.allPermissionsGranted = true;
    }

    std::string symbol() const { return symbolFor(facts).toStdString(); }

    std::string during(Case dictation) {
        facts.dictation = dictation;
        return symbol();
    }

    std::string atFrame(std::int64_t animIdx) {
        facts.animIdx = animIdx;
        return symbol();
    }

    void chooseLocal() {
        facts.isLocal = true;
        facts.modelIsInstalled = true;
    }

    StatusFacts facts;
};

TEST_F(StatusSymbolTest, DictationShowsItsState) {
    EXPECT_EQ(during(Case::idle), "bubble.left");
    EXPECT_EQ(during(Case::recording), "bubble.left.fill");
    EXPECT_EQ(during(Case::transcribing), "waveform.path");
    EXPECT_EQ(during(Case::error), "exclamationmark.triangle");
    EXPECT_EQ(during(Case::unreachable), "exclamationmark.triangle");
}

TEST_F(StatusSymbolTest, SuccessiveTicksWhileTranscribingGoThroughTheWaveforms) {
    facts.dictation = Case::transcribing;
    EXPECT_EQ(atFrame(0), "waveform.path");
    EXPECT_EQ(atFrame(1), "waveform");
    EXPECT_EQ(atFrame(2), "waveform.path.ecg");
    EXPECT_EQ(atFrame(3), "waveform.path");
}

TEST_F(StatusSymbolTest, AStartingServerAlternatesEveryThreeFrames) {
    chooseLocal();
    facts.serverIsStarting = true;
    for (const int frame : {0, 1, 2, 6, 7, 8})
        EXPECT_EQ(atFrame(frame), "ellipsis.circle") << frame;
    for (const int frame : {3, 4, 5, 9, 10, 11})
        EXPECT_EQ(atFrame(frame), "ellipsis.circle.fill") << frame;
}

TEST_F(StatusSymbolTest, AServerThatNeedsTheUserOrIsStoppedShowsABubbleWithAMark) {
    chooseLocal();
    facts.serverNeedsApproval = true;
    EXPECT_EQ(symbol(), "exclamationmark.bubble");
    facts.serverNeedsApproval = false;
    facts.serverIsStopped = true;
    EXPECT_EQ(symbol(), "exclamationmark.bubble");
}

TEST_F(StatusSymbolTest, WithTheModelMissingTheArrowIsShownEvenWhileRecording) {
    facts.isLocal = true;
    EXPECT_EQ(during(Case::recording), "arrow.down.circle");
}

TEST_F(StatusSymbolTest, BeforeTheOnboardingIsCompleteAMissingPermissionStillShowsDictation) {
    facts.onboardingComplete = false;
    facts.allPermissionsGranted = false;
    EXPECT_EQ(during(Case::recording), "bubble.left.fill");
}

TEST_F(StatusSymbolTest, AfterTheOnboardingAMissingPermissionPrecedesAStartingServer) {
    chooseLocal();
    facts.serverIsStarting = true;
    facts.allPermissionsGranted = false;
    EXPECT_EQ(symbol(), "exclamationmark.triangle");
}

TEST_F(StatusSymbolTest, AMissingPermissionPrecedesAMissingModel) {
    facts.isLocal = true;
    facts.allPermissionsGranted = false;
    EXPECT_EQ(symbol(), "exclamationmark.triangle");
}

TEST_F(StatusSymbolTest, RemoteModesNeverShowTheDownload) {
    facts.isLocal = false;
    facts.modelIsInstalled = false;
    EXPECT_EQ(symbol(), "bubble.left");
}

}  // namespace
}  // namespace quietlark
