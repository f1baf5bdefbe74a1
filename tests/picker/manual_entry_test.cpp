#include <QSignalSpy>

#include "picker/picker_fixture.h"
#include "picker/server_picker_model.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

class ManualEntryTest : public PickerFixture {
protected:
    void enterManually() {
        model().setPhase(Phase::manualEntry);
        model().onManualEntryAppear();
    }
    [[nodiscard]] Probe probe() { return model().manualProbe().kind; }

    /// Edits the address 100 times within a second; the last one is "box:8100".
    void typeHundredTimes() {
        for (int port = 8001; port <= 8100; ++port) {
            model().setManualHostPort(text("box:") + QString::number(port));
            scheduler.advance(10ms);
        }
    }
};

TEST_F(ManualEntryTest, TheCheckBeginsAfterAPauseInTyping) {
    type("box:8001");
    scheduler.advance(499ms);
    EXPECT_EQ(probe(), Probe::idle);
    EXPECT_EQ(network.requests().size(), 0U);
    scheduler.advance(1ms);
    EXPECT_EQ(probe(), Probe::probing);
    EXPECT_EQ(network.openCount(), 1U);
}

TEST_F(ManualEntryTest, AnAnsweringServerIsOkWithItsModel) {
    serverAnswersAt("http://box:8001", "whisper-large");
    type("box:8001");
    pauseAndCheck();
    EXPECT_EQ(model().manualProbe(), (ProbeState{Probe::ok, text("whisper-large")}));
}

TEST_F(ManualEntryTest, AServerThatNamesNoModelIsOkWithoutOne) {
    network.respondTo(text("http://box:8001/"), 200, "whisper.cpp: POST /inference");
    type("box:8001");
    pauseAndCheck();
    EXPECT_EQ(model().manualProbe(), (ProbeState{Probe::ok, std::nullopt}));
}

TEST_F(ManualEntryTest, AQuestionMayTakeThreeSeconds) {
    type("box:8001");
    scheduler.advance(500ms);
    EXPECT_EQ(network.requests().front().idleTimeout, 3000ms);
}

TEST_F(ManualEntryTest, AnUnreachableServerIsTriedAgainEveryThreeSeconds) {
    type("box:8001");
    pauseAndCheck();
    EXPECT_EQ(probe(), Probe::failed);
    scheduler.advance(2999ms);
    EXPECT_EQ(probe(), Probe::failed);
    scheduler.advance(1ms);
    EXPECT_EQ(probe(), Probe::probing);
    network.runAnswers();
    EXPECT_EQ(probe(), Probe::failed);
}

TEST_F(ManualEntryTest, AServerThatComesUpIsFoundByTheNextTry) {
    type("box:8001");
    pauseAndCheck();
    serverAnswersAt("http://box:8001");
    scheduler.advance(3s);
    network.runAnswers();
    EXPECT_EQ(probe(), Probe::ok);
}

TEST_F(ManualEntryTest, AServerThatAnsweredIsNotAskedAgain) {
    serverAnswersAt("http://box:8001");
    type("box:8001");
    pauseAndCheck();
    const auto asked = network.requests().size();
    scheduler.advance(60s);
    EXPECT_EQ(network.requests().size(), asked);
}

TEST_F(ManualEntryTest, AHostWithoutAPortKeepsTheCheckIdleAndContinueDisabled) {
    model().setPhase(Phase::manualEntry);
    type("host");
    scheduler.advance(10s);
    EXPECT_EQ(probe(), Probe::idle);
    EXPECT_FALSE(model().canAdvance());
    EXPECT_EQ(network.requests().size(), 0U);
}

TEST_F(ManualEntryTest, TypingAloneIsNotEnough) {
    model().setPhase(Phase::manualEntry);
    type("box:8001");
    EXPECT_FALSE(model().canAdvance());
    scheduler.advance(500ms);
    EXPECT_FALSE(model().canAdvance());
}

TEST_F(ManualEntryTest, DeletingTheAddressEndsTheCheckAtOnce) {
    type("box:8001");
    scheduler.advance(500ms);
    type("");
    EXPECT_EQ(probe(), Probe::idle);
    EXPECT_EQ(network.openCount(), 0U);
}

TEST_F(ManualEntryTest, HundredEditsInASecondLeaveOneCheckAndTheNewestResult) {
    serverAnswersAt("http://box:8100");
    typeHundredTimes();
    EXPECT_EQ(network.requests().size(), 0U);
    scheduler.advance(490ms);
    EXPECT_EQ(network.openCount(), 1U);
    network.runAnswers();
    EXPECT_EQ(probe(), Probe::ok);
    EXPECT_EQ(network.requests().size(), 1U);
}

TEST_F(ManualEntryTest, HundredEditsDuringACheckWithdrawItAndLeaveTheNewestResult) {
    serverAnswersAt("http://other:1", "whisper-old");
    serverAnswersAt("http://box:8100", "whisper-new");
    type("other:1");
    scheduler.advance(500ms);
    ASSERT_EQ(network.openCount(), 1U);
    typeHundredTimes();
    EXPECT_EQ(network.openCount(), 0U);
    pauseAndCheck();
    EXPECT_EQ(model().manualProbe(), (ProbeState{Probe::ok, text("whisper-new")}));
    EXPECT_EQ(network.requests().size(), 2U);
}

TEST_F(ManualEntryTest, EditingWhileACheckWaitsCancelsIt) {
    type("old:1");
    pauseAndCheck();
    ASSERT_EQ(probe(), Probe::failed);
    const auto asked = network.requests().size();
    serverAnswersAt("http://new:2");
    type("new:2");
    pauseAndCheck();
    EXPECT_EQ(probe(), Probe::ok);
    scheduler.advance(10s);
    EXPECT_EQ(network.requests().size(), asked + 1);
}

TEST_F(ManualEntryTest, TheResultBeforeAnEditStaysButDoesNotConnect) {
    serverAnswersAt("http://box:8001");
    enterManually();
    type("box:8001");
    pauseAndCheck();
    ASSERT_TRUE(model().canConnect());
    type("box:8002");
    EXPECT_EQ(probe(), Probe::ok);
    EXPECT_FALSE(model().manualProbeIsUpToDate());
    EXPECT_FALSE(model().canConnect());
    type("box:8001");
    EXPECT_TRUE(model().canConnect());
}

TEST_F(ManualEntryTest, ACheckThatFollowsAnotherDuringItIsAnnounced) {
    type("other:1");
    scheduler.advance(500ms);
    type("box:8001");
    ASSERT_EQ(probe(), Probe::probing);
    ASSERT_FALSE(model().manualProbeIsUpToDate());
    const QSignalSpy announced(&model(), &ServerPickerModel::changed);
    scheduler.advance(500ms);
    EXPECT_TRUE(model().manualProbeIsUpToDate());
    EXPECT_EQ(announced.count(), 1);
}

TEST_F(ManualEntryTest, TheSameTextAgainIsNoEdit) {
    type("box:8001");
    scheduler.advance(400ms);
    type("box:8001");
    scheduler.advance(100ms);
    EXPECT_EQ(probe(), Probe::probing);
}

TEST_F(ManualEntryTest, LeavingTheAddressFieldEndsTheCheck) {
    type("box:8001");
    pauseAndCheck();
    const auto asked = network.requests().size();
    model().onManualEntryDisappear();
    scheduler.advance(60s);
    EXPECT_EQ(network.requests().size(), asked);
}

TEST_F(ManualEntryTest, ComingBackToTheAddressFieldChecksAgain) {
    type("box:8001");
    model().onManualEntryDisappear();
    enterManually();
    scheduler.advance(500ms);
    EXPECT_EQ(network.openCount(), 1U);
}

TEST_F(ManualEntryTest, TheCheckEndsWithTheModel) {
    type("box:8001");
    scheduler.advance(500ms);
    dropModel();
    EXPECT_EQ(network.openCount(), 0U);
    scheduler.advance(60s);
    EXPECT_EQ(network.requests().size(), 1U);
}

TEST_F(ManualEntryTest, AnAddressThatIsNoUrlFails) {
    type("a b:8001");
    scheduler.advance(500ms);
    EXPECT_TRUE(waitUntil([this] { return probe() == Probe::failed; }));
    EXPECT_EQ(network.requests().size(), 0U);
}

TEST_F(ManualEntryTest, AnHttpAddressIsPrefilledWithoutItsScheme) {
    saved(manual("box", 8001, "http"));
    enterManually();
    EXPECT_EQ(model().manualHostPort(), text("box:8001"));
}

TEST_F(ManualEntryTest, AnHttpsAddressIsPrefilledWithItsScheme) {
    saved(manual("box", 443, "https"));
    enterManually();
    EXPECT_EQ(model().manualHostPort(), text("https://box:443"));
}

TEST_F(ManualEntryTest, APrefilledAddressIsChecked) {
    saved(manual("box", 8001, ""));
    serverAnswersAt("http://box:8001");
    enterManually();
    pauseAndCheck();
    EXPECT_EQ(probe(), Probe::ok);
}

TEST_F(ManualEntryTest, WhatTheUserHasTypedIsNotPrefilledOver) {
    saved(manual("box", 8001, "http"));
    type("other:1");
    enterManually();
    EXPECT_EQ(model().manualHostPort(), text("other:1"));
}

TEST_F(ManualEntryTest, AnotherModeIsNotPrefilled) {
    saved(discoveredRemote());
    enterManually();
    EXPECT_EQ(model().manualHostPort(), QString());
    EXPECT_EQ(probe(), Probe::idle);
}

TEST_F(ManualEntryTest, ACheckedAddressIsStored) {
    serverAnswersAt("https://Box.local:443");
    serverAnswersAt("https://box.local:443");
    enterManually();
    type("HTTPS://Box.local:443/v1/");
    pauseAndCheck();
    model().advance();
    EXPECT_EQ(storedMode(), ServerMode(ManualRemote{text("Box.local"), 443, text("https")}));
    EXPECT_EQ(model().commitTick(), 1);
}

TEST_F(ManualEntryTest, AnUncheckedAddressIsNotStored) {
    enterManually();
    type("box:8001");
    model().advance();
    pauseAndCheck();
    model().advance();
    EXPECT_FALSE(isSaved());
    EXPECT_EQ(model().commitTick(), 0);
}

TEST_F(ManualEntryTest, EveryResultIsAnnounced) {
    serverAnswersAt("http://box:8001");
    type("box:8001");
    const QSignalSpy announced(&model(), &ServerPickerModel::changed);
    scheduler.advance(500ms);
    EXPECT_EQ(announced.count(), 1);
    network.runAnswers();
    EXPECT_EQ(announced.count(), 2);
}

}  // namespace
}  // namespace quietlark
