#include "dictation/paster.h"

#include <gtest/gtest.h>

#include "fakes/fake_key_synthesizer.h"
#include "fakes/fake_pasteboard.h"
#include "fakes/fake_scheduler.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

const PasteboardSnapshot imageAndText = {
    {{"image/png", "\x89PNG"}, {"text/html", "<b>cat</b>"}, {"text/plain", "cat"}}};

class PasterTest : public ::testing::Test {
protected:
    void paste(const char* text) {
        paster->paste(QString::fromUtf8(text),
                      [this](const tl::expected<void, Unavailable>& posted) {
                          ++reports;
                          couldPost = posted.has_value();
                      });
    }

    /// Pastes and lets pass what comes before the keystroke.
    void pasteUpToTheKeystroke(const char* text) {
        paste(text);
        scheduler.advance(Paster::visibilityDelay);
    }

    FakeScheduler scheduler;
    FakePasteboard pasteboard{scheduler};
    FakeKeySynthesizer keys;
    std::unique_ptr<Paster> paster = std::make_unique<Paster>(pasteboard, keys, scheduler);
    int reports = 0;
    bool couldPost = false;
};

TEST_F(PasterTest, EmptyTextTouchesNothing) {
    pasteboard.userCopies(imageAndText);
    paste("");
    scheduler.advance(1s);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
    EXPECT_TRUE(keys.posted().empty());
    EXPECT_EQ(reports, 1);
    EXPECT_TRUE(couldPost);
}

TEST_F(PasterTest, TheTextIsOnThePasteboardFiftyMillisecondsBeforeTheKeystroke) {
    paste("hello");
    scheduler.advance(49ms);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
    EXPECT_TRUE(keys.posted().empty());
    scheduler.advance(1ms);
    EXPECT_EQ(keys.posted(), (std::vector<FakeKeySynthesizer::Keystroke>{{9, 0x100000}}));
}

TEST_F(PasterTest, ReportsWhenTheKeystrokeIsOnItsWay) {
    paste("hello");
    scheduler.advance(49ms);
    EXPECT_EQ(reports, 0);
    scheduler.advance(1ms);
    EXPECT_EQ(reports, 1);
    EXPECT_TRUE(couldPost);
}

TEST_F(PasterTest, EveryRepresentationIsBackInItsOrderAfterTwoHundredMilliseconds) {
    pasteboard.userCopies(imageAndText);
    pasteUpToTheKeystroke("hello");
    scheduler.advance(199ms);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
    scheduler.advance(1ms);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, AnEmptyPasteboardIsEmptyAgain) {
    pasteUpToTheKeystroke("hello");
    scheduler.advance(200ms);
    EXPECT_TRUE(pasteboard.contents().empty());
}

TEST_F(PasterTest, ARepresentationThatCannotBeReadIsLeftOutAndItsItemRestored) {
    pasteboard.userCopies(imageAndText);
    pasteboard.cannotBeRead("text/html");
    pasteUpToTheKeystroke("hello");
    scheduler.advance(200ms);
    EXPECT_EQ(pasteboard.contents(),
              (PasteboardSnapshot{{{"image/png", "\x89PNG"}, {"text/plain", "cat"}}}));
}

TEST_F(PasterTest, AnItemWithAnUnreadableRepresentationIsRestoredWithTheOthers) {
    pasteboard.userCopies({{{"text/plain", "one"}},
                           {{"image/png", "\x89PNG"}, {"text/plain", "two"}},
                           {{"text/html", "<b>three</b>"}}});
    pasteboard.cannotBeRead("image/png");
    pasteUpToTheKeystroke("hello");
    scheduler.advance(200ms);
    EXPECT_EQ(pasteboard.contents(), (PasteboardSnapshot{{{"text/plain", "one"}},
                                                         {{"text/plain", "two"}},
                                                         {{"text/html", "<b>three</b>"}}}));
}

TEST_F(PasterTest, TheTextStaysWhenThePasteboardCouldNotBeListed) {
    pasteboard.userCopies(imageAndText);
    pasteboard.cannotBeListed();
    pasteUpToTheKeystroke("hello");
    scheduler.advance(1s);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
    EXPECT_EQ(keys.posted().size(), 1u);
}

TEST_F(PasterTest, TheTextStaysWhenNothingCanBeTyped) {
    pasteboard.userCopies(imageAndText);
    keys.makeUnavailable(QStringLiteral("No keys here."));
    pasteUpToTheKeystroke("hello");
    EXPECT_EQ(reports, 1);
    EXPECT_FALSE(couldPost);
    scheduler.advance(1s);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
}

TEST_F(PasterTest, ATextThatCouldNotBeTypedIsWhatTheNextPasteBringsBack) {
    pasteboard.userCopies(imageAndText);
    keys.makeUnavailable(QStringLiteral("No keys here."));
    pasteUpToTheKeystroke("lost");
    EXPECT_FALSE(pasteboard.awaitsRestore());
    keys = FakeKeySynthesizer();
    pasteUpToTheKeystroke("typed");
    EXPECT_TRUE(couldPost);
    scheduler.advance(200ms);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("lost"));
}

TEST_F(PasterTest, ATextOverWhatCouldNotBeListedIsTheUsersOwnAfterTheKeystroke) {
    pasteboard.userCopies(imageAndText);
    pasteboard.cannotBeListed();
    paste("hello");
    scheduler.advance(49ms);
    EXPECT_TRUE(pasteboard.awaitsRestore());
    scheduler.advance(1ms);
    EXPECT_EQ(reports, 1);
    EXPECT_FALSE(pasteboard.awaitsRestore());
}

TEST_F(PasterTest, WhatTheUserCopiesMeanwhileStays) {
    pasteUpToTheKeystroke("hello");
    pasteboard.userCopies(QStringLiteral("newer"));
    scheduler.advance(1s);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("newer"));
}

TEST_F(PasterTest, ASecondPasteBeforeTheRestoreStillBringsBackTheUsersContents) {
    pasteboard.userCopies(imageAndText);
    pasteUpToTheKeystroke("one");
    scheduler.advance(100ms);
    pasteUpToTheKeystroke("two");
    scheduler.advance(199ms);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("two"));
    scheduler.advance(1ms);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
    EXPECT_EQ(keys.posted().size(), 2u);
}

TEST_F(PasterTest, ASecondPasteBeforeTheFirstIsWrittenReplacesIt) {
    pasteboard.userCopies(imageAndText);
    paste("one");
    pasteUpToTheKeystroke("two");
    EXPECT_EQ(pasteboard.text(), QStringLiteral("two"));
    scheduler.advance(1s);
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(keys.posted().size(), 1u);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, ASecondPasteBeforeTheFirstIsTypedReplacesIt) {
    pasteboard.userCopies(imageAndText);
    paste("one");
    scheduler.advance(49ms);
    pasteUpToTheKeystroke("two");
    EXPECT_EQ(pasteboard.text(), QStringLiteral("two"));
    scheduler.advance(1s);
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(keys.posted().size(), 1u);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, TheFiftyMillisecondsBeginWhenASlowPasteboardHasTheText) {
    pasteboard.userCopies(imageAndText);
    pasteboard.answersAfter(400ms);
    paste("hello");
    scheduler.advance(799ms);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
    scheduler.advance(1ms);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
    scheduler.advance(49ms);
    EXPECT_TRUE(keys.posted().empty());
    scheduler.advance(1ms);
    EXPECT_EQ(keys.posted().size(), 1u);
}

TEST_F(PasterTest, ACopyThatIsMadeBeforeTheTextStandsIsWhatComesBack) {
    pasteboard.userCopies(imageAndText);
    pasteboard.othersAreFaster(2, QStringLiteral("newer"));
    pasteUpToTheKeystroke("hello");
    EXPECT_EQ(pasteboard.text(), QStringLiteral("newer"));
    scheduler.advance(2 * Paster::visibilityDelay);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
    EXPECT_EQ(keys.posted().size(), 1u);
    scheduler.advance(200ms);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("newer"));
}

TEST_F(PasterTest, NothingIsTypedWhenTheTextCannotBePutOnThePasteboard) {
    pasteboard.userCopies(imageAndText);
    pasteboard.othersAreFaster(Paster::mostAttempts, QStringLiteral("newer"));
    pasteUpToTheKeystroke("hello");
    EXPECT_EQ(reports, 0);
    scheduler.advance(Paster::visibilityDelay);
    EXPECT_EQ(reports, 1);
    EXPECT_FALSE(couldPost);
    scheduler.advance(1s);
    EXPECT_TRUE(keys.posted().empty());
    EXPECT_EQ(pasteboard.text(), QStringLiteral("newer"));
    EXPECT_EQ(reports, 1);
}

TEST_F(PasterTest, WhatTheTextCoversComesBackWhenItTookSeveralAttempts) {
    pasteboard.userCopies(imageAndText);
    pasteboard.othersTakeTheOtherPlace(2);
    pasteUpToTheKeystroke("hello");
    scheduler.advance(2 * Paster::visibilityDelay);
    EXPECT_TRUE(couldPost);
    EXPECT_EQ(keys.posted().size(), 1u);
    scheduler.advance(200ms);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, ATextThatWouldNotBeFoundStaysForTheUserToPaste) {
    pasteboard.userCopies(imageAndText);
    pasteboard.othersTakeTheOtherPlace(Paster::mostAttempts);
    pasteUpToTheKeystroke("hello");
    scheduler.advance(1s);
    EXPECT_EQ(reports, 1);
    EXPECT_FALSE(couldPost);
    EXPECT_TRUE(keys.posted().empty());
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
    EXPECT_FALSE(pasteboard.awaitsRestore());
}

TEST_F(PasterTest, GoingAwayBetweenTwoAttemptsRestoresAtOnce) {
    pasteboard.userCopies(imageAndText);
    pasteboard.othersTakeTheOtherPlace(1);
    paste("hello");
    scheduler.advance(10ms);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
    paster.reset();
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, GoingAwayWhileTheNextAttemptReadsRestoresAtOnce) {
    pasteboard.userCopies(imageAndText);
    pasteboard.othersTakeTheOtherPlace(1);
    paste("hello");
    scheduler.advance(10ms);
    pasteboard.answersAfter(1s);
    scheduler.advance(Paster::visibilityDelay);
    paster.reset();
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, ASecondPasteBetweenTwoAttemptsReplacesTheFirst) {
    pasteboard.userCopies(imageAndText);
    pasteboard.othersAreFaster(1, QStringLiteral("newer"));
    paste("one");
    scheduler.advance(10ms);
    pasteUpToTheKeystroke("two");
    scheduler.advance(1s);
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(keys.posted().size(), 1u);
    EXPECT_EQ(pasteboard.text(), QStringLiteral("newer"));
}

TEST_F(PasterTest, ASecondPasteBeforeTheFirstStandsReplacesIt) {
    pasteboard.userCopies(imageAndText);
    pasteboard.answersAfter(10ms);
    paste("one");
    scheduler.advance(10ms);
    paste("two");
    scheduler.advance(1s);
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(keys.posted().size(), 1u);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, GoingAwayBeforeTheTextStandsRestoresToo) {
    pasteboard.userCopies(imageAndText);
    pasteboard.answersAfter(10ms);
    paste("hello");
    scheduler.advance(10ms);
    paster.reset();
    scheduler.advance(1s);
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, GoingAwayRestoresAtOnce) {
    pasteboard.userCopies(imageAndText);
    pasteUpToTheKeystroke("hello");
    paster.reset();
    EXPECT_EQ(pasteboard.contents(), imageAndText);
}

TEST_F(PasterTest, GoingAwayBeforeTheKeystrokeKeepsATextThatReplacedNothingKnown) {
    pasteboard.userCopies(imageAndText);
    pasteboard.cannotBeListed();
    paste("hello");
    scheduler.advance(49ms);
    paster.reset();
    EXPECT_FALSE(pasteboard.awaitsRestore());
    EXPECT_EQ(pasteboard.text(), QStringLiteral("hello"));
}

}  // namespace
}  // namespace quietlark
