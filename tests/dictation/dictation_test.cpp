#include "dictation/dictation_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;
using DictationTest = DictationFixture;

TEST_F(DictationTest, AGestureBecomesPastedText) {
    dictate();
    EXPECT_EQ(pasteboard.text(), QStringLiteral("Hello world"));
    EXPECT_EQ(keys.posted().size(), 1u);
    EXPECT_EQ(takeChanges(), (std::vector{Case::recording, Case::transcribing, Case::idle}));
}

TEST_F(DictationTest, TheServerIsProbedForThreeSecondsAndSentSixteenKilohertz) {
    dictate();
    EXPECT_EQ(network.requests().front().idleTimeout, 3s);
    const QByteArray& upload = network.requests().back().body;
    EXPECT_EQ(upload.mid(upload.indexOf("RIFF") + 24, 4).toHex(' '), "80 3e 00 00");
}

TEST_F(DictationTest, ChangesAreReportedFromTheMainQueueOnly) {
    dictation.beginRecord();
    EXPECT_TRUE(changes.empty());
    EXPECT_EQ(takeChanges(), std::vector{Case::recording});
}

TEST_F(DictationTest, ASecondPressWhileRecordingIsIgnored) {
    speak();
    dictation.beginRecord();
    EXPECT_EQ(takeChanges(), std::vector{Case::recording});
    stopSpeaking();
    network.runAnswers();
    EXPECT_GT(network.requests().back().body.size(), 44);
}

TEST_F(DictationTest, PressesAndReleasesWhileTranscribingAreIgnored) {
    speak();
    stopSpeaking();
    takeChanges();
    dictation.beginRecord();
    dictation.endRecord();
    EXPECT_EQ(dictation.state().kind, Case::transcribing);
    EXPECT_TRUE(takeChanges().empty());
}

TEST_F(DictationTest, AReleaseWithoutARecordingIsIgnored) {
    dictation.endRecord();
    EXPECT_EQ(dictation.state().kind, Case::idle);
    EXPECT_TRUE(network.requests().empty());
}

TEST_F(DictationTest, APressInErrorStartsANewRecordingAtOnce) {
    serverAnswers("boom", 500);
    dictate();
    ASSERT_EQ(dictation.state().kind, Case::error);
    dictation.beginRecord();
    EXPECT_EQ(dictation.state().kind, Case::recording);
    scheduler.advance(1min);
    EXPECT_EQ(dictation.state().kind, Case::recording);
}

TEST_F(DictationTest, AMicrophoneThatDoesNotStartIsAnErrorForTwoSeconds) {
    microphone.format = {};
    dictation.beginRecord();
    EXPECT_EQ(dictation.state(),
              DictationState::error(QStringLiteral(
                  "No input audio format available — microphone permission may be denied.")));
    scheduler.advance(1999ms);
    EXPECT_EQ(dictation.state().kind, Case::error);
    scheduler.advance(1ms);
    EXPECT_EQ(dictation.state().kind, Case::idle);
}

TEST_F(DictationTest, NothingHeardIsAnErrorForTwoSeconds) {
    dictation.beginRecord();
    stopSpeaking();
    EXPECT_EQ(dictation.state(), DictationState::error(QStringLiteral("No audio captured")));
    scheduler.advance(2s);
    EXPECT_EQ(dictation.state().kind, Case::idle);
    EXPECT_TRUE(network.requests().empty());
}

TEST_F(DictationTest, WithoutAChosenServerItIsUnreachableForFiveSeconds) {
    config.serverMode = Unconfigured{};
    speak();
    stopSpeaking();
    EXPECT_EQ(dictation.state(),
              DictationState::unreachable(QStringLiteral("No server configured")));
    scheduler.advance(4999ms);
    EXPECT_EQ(dictation.state().kind, Case::unreachable);
    scheduler.advance(1ms);
    EXPECT_EQ(dictation.state().kind, Case::idle);
}

TEST_F(DictationTest, ALocalServerThatHasNotPublishedItsAddressCountsAsNone) {
    config.serverMode = Local{};
    speak();
    stopSpeaking();
    EXPECT_EQ(dictation.state(),
              DictationState::unreachable(QStringLiteral("No server configured")));
}

TEST_F(DictationTest, TheMessageForAnUnreachableServerNamesItsAddress) {
    config.serverMode = ManualRemote{QStringLiteral("gone"), 1, QStringLiteral("https")};
    dictate();
    EXPECT_EQ(dictation.state(), DictationState::unreachable(
                                     QStringLiteral("Couldn't reach server at https://gone:1")));
    EXPECT_TRUE(pasteboard.contents().empty());
}

TEST_F(DictationTest, ARefusedUploadIsAnErrorAndKeepsTheServer) {
    serverAnswers("boom", 500);
    dictate();
    EXPECT_EQ(dictation.state().kind, Case::error);
    EXPECT_FALSE(dictation.state().message.isEmpty());
    const auto before = network.requests().size();
    serverAnswers("again");
    dictate();
    EXPECT_EQ(network.requests().size(), before + 1);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("again"));
}

TEST_F(DictationTest, TheSecondDictationSendsOneRequestAndNoProbe) {
    dictate();
    const auto before = network.requests().size();
    dictate();
    ASSERT_EQ(network.requests().size(), before + 1);
    EXPECT_EQ(network.requests().back().url.toString(), QString::fromLatin1(uploadAddress));
}

TEST_F(DictationTest, AnotherAddressIsResolvedAfresh) {
    dictate();
    config.serverMode = ManualRemote{QStringLiteral("other"), 9, QStringLiteral("http")};
    dictate();
    EXPECT_EQ(dictation.state().message, QStringLiteral("Couldn't reach server at http://other:9"));
}

TEST_F(DictationTest, AFailedResolutionIsTriedAgainNextTime) {
    network.respondTo(QStringLiteral("http://box:8080/"), 503);
    dictate();
    ASSERT_EQ(dictation.state().kind, Case::unreachable);
    serverIsUp();
    dictate();
    EXPECT_EQ(pasteboard.text(), QStringLiteral("Hello world"));
}

TEST_F(DictationTest, InvalidatingTheCacheResolvesAfresh) {
    dictate();
    const auto before = network.requests().size();
    dictation.invalidateCache();
    dictate();
    EXPECT_GT(network.requests().size(), before + 1);
}

TEST_F(DictationTest, InvalidatingTheCacheEndsAnUnreachableStateAtOnce) {
    config.serverMode = Unconfigured{};
    dictate();
    ASSERT_EQ(dictation.state().kind, Case::unreachable);
    dictation.invalidateCache();
    EXPECT_EQ(dictation.state().kind, Case::idle);
}

TEST_F(DictationTest, InvalidatingTheCacheDoesNotDisturbARecording) {
    speak();
    dictation.invalidateCache();
    EXPECT_EQ(dictation.state().kind, Case::recording);
}

TEST_F(DictationTest, TheFirstOfTwoErrorsMayClearTheSecond) {
    dictation.beginRecord();
    stopSpeaking();
    scheduler.advance(1500ms);
    dictation.beginRecord();
    stopSpeaking();
    scheduler.advance(500ms);
    EXPECT_EQ(dictation.state().kind, Case::idle);
}

TEST_F(DictationTest, AnErrorsTimerLeavesAnUnreachableStateAlone) {
    dictation.beginRecord();
    stopSpeaking();
    config.serverMode = Unconfigured{};
    speak();
    stopSpeaking();
    scheduler.advance(2s);
    EXPECT_EQ(dictation.state().kind, Case::unreachable);
}

TEST_F(DictationTest, TheFirstOfTwoUnreachableStatesMayClearTheSecond) {
    config.serverMode = Unconfigured{};
    dictate();
    scheduler.advance(3s);
    dictate();
    scheduler.advance(2s);
    EXPECT_EQ(dictation.state().kind, Case::idle);
}

TEST_F(DictationTest, AnUnreachableStatesTimerLeavesAnErrorAlone) {
    config.serverMode = Unconfigured{};
    dictate();
    scheduler.advance(4s);
    dictation.beginRecord();
    stopSpeaking();
    scheduler.advance(1s);
    EXPECT_EQ(dictation.state().kind, Case::error);
}

TEST_F(DictationTest, InvalidatingTheCacheEndsAnErrorAtOnce) {
    dictation.beginRecord();
    stopSpeaking();
    ASSERT_EQ(dictation.state().kind, Case::error);
    dictation.invalidateCache();
    EXPECT_EQ(dictation.state().kind, Case::idle);
}

TEST_F(DictationTest, GoingAwayInTheMiddleIsSafe) {
    auto other = std::make_unique<Dictation>([this] { return config; }, recorder, transcription,
                                             paster, scheduler);
    other->beginRecord();
    microphone.hearTone(4096);
    other->endRecord();
    scheduler.runPosted();
    other.reset();
    network.runAnswers();
    scheduler.advance(1min);
    EXPECT_TRUE(keys.posted().empty());
}

TEST_F(DictationTest, TheSameErrorAgainNotifiesNobody) {
    microphone.format = {};
    dictation.beginRecord();
    EXPECT_EQ(takeChanges(), std::vector{Case::error});
    dictation.beginRecord();
    EXPECT_TRUE(takeChanges().empty());
}

TEST_F(DictationTest, ABrokenConnectionIsAnErrorWithItsOwnSentence) {
    dictate();
    speak();
    stopSpeaking();
    network.fail({QStringLiteral("Wire"), 7, QStringLiteral("The wire broke."), {}});
    EXPECT_EQ(dictation.state(), DictationState::error(QStringLiteral("The wire broke.")));
}

TEST_F(DictationTest, AnEmptyTextPastesNothingAndIsNoError) {
    serverAnswers(R"({"text": " [BLANK_AUDIO] "})");
    pasteboard.userCopies(QStringLiteral("mine"));
    dictate();
    EXPECT_EQ(dictation.state().kind, Case::idle);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("mine"));
    EXPECT_TRUE(keys.posted().empty());
}

TEST_F(DictationTest, WhenNothingCanBeTypedItSaysSoAndLeavesTheTextOnThePasteboard) {
    keys.makeUnavailable(QStringLiteral("No keys here."));
    dictate();
    EXPECT_EQ(dictation.state(), DictationState::error(QStringLiteral("No keys here.")));
    scheduler.advance(1min);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("Hello world"));
}

TEST_F(DictationTest, TheConfiguredLanguageIsSent) {
    config.language = QStringLiteral("de");
    dictate();
    EXPECT_TRUE(network.requests().back().body.contains("name=\"language\"\r\n\r\nde\r\n"));
}

}  // namespace
}  // namespace quietlark
