#include <signal.h>

#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

class X11PasteboardReadTest : public X11PasteboardTest {
protected:
    /// Long enough for what a program answers at once, also on a busy machine.
    void giveUpSoon() {
        auto limits = patient();
        limits.snapshot = 3s;
        open(limits);
    }

    /// xclip owns the clipboard until it is ended.
    std::unique_ptr<ChildProcess> xclipCopies(const char* text) {
        const QString script =
            QStringLiteral("exec xclip -sel c -quiet < <(printf '%1') 2>/dev/null");
        auto xclip = server.start(QStringLiteral("bash"),
                                  {QStringLiteral("-c"), script.arg(QString::fromUtf8(text))});
        EXPECT_TRUE(
            waitUntil([this] { return !snapshot().value_or(PasteboardSnapshot()).empty(); }));
        return xclip;
    }
};

TEST_F(X11PasteboardReadTest, NothingCopiedGivesAnEmptySnapshot) {
    EXPECT_EQ(snapshot(), PasteboardSnapshot());
}

TEST_F(X11PasteboardReadTest, EveryRepresentationIsReadInTheOwnersOrder) {
    userCopies({QStringLiteral("image/png=pattern:5000"), QStringLiteral("text/html=text:<b>a</b>"),
                QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"image/png", patternOf(5000)},
                                      {"text/html", "<b>a</b>"},
                                      {"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, WhatXclipHasCopiedIsRead) {
    const auto xclip = xclipCopies("from xclip");
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "from xclip"}}));
}

TEST_F(X11PasteboardReadTest, AnEmptyTextIsARepresentation) {
    userCopies({QStringLiteral("UTF8_STRING=text:")});
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", ""}}));
}

TEST_F(X11PasteboardReadTest, TargetsThatAreNoDataAreNeverAskedFor) {
    auto& owner = userCopies(
        {QStringLiteral("TIMESTAMP=exit"), QStringLiteral("MULTIPLE=exit"),
         QStringLiteral("SAVE_TARGETS=exit"), QStringLiteral("DELETE=exit"),
         QStringLiteral("INSERT_SELECTION=exit"), QStringLiteral("INSERT_PROPERTY=exit"),
         QStringLiteral("application/x-qt-image=exit"), QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
    EXPECT_TRUE(owner.process().isRunning());
}

TEST_F(X11PasteboardReadTest, NumbersOfTheOwnersWindowsAreNoData) {
    userCopies({QStringLiteral("CLIENT_WINDOW=window:"), QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, ATargetThatIsListedTwiceIsReadOnce) {
    userCopies({QStringLiteral("TARGETS=atoms:STRING,STRING"), QStringLiteral("STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, ALargeImageIsReadInPieces) {
    userCopies({QStringLiteral("image/png=pattern:8000000"), QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"image/png", patternOf(8'000'000)}, {"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, HundredsOfTargetsAreRead) {
    QStringList offers;
    for (int number = 0; number < 500; ++number)
        offers << QStringLiteral("application/x-%1=text:%1").arg(number);
    userCopies(offers);
    const auto read = item();
    ASSERT_EQ(read.size(), 500U);
    EXPECT_EQ(read.back(), (CapturedType{"application/x-499", "499"}));
}

TEST_F(X11PasteboardReadTest, ARefusedTargetIsLeftOut) {
    userCopies({QStringLiteral("image/png=refuse"), QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, ATargetThatHangsIsLeftOutAloneOfAll) {
    giveUpSoon();
    userCopies({QStringLiteral("image/bmp=hang"), QStringLiteral("image/png=pattern:5000"),
                QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"image/png", patternOf(5000)}, {"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, AnOwnerThatHangsIsAskedForAFewTargetsOnly) {
    giveUpSoon();
    QStringList offers;
    for (int number = 0; number < 20; ++number)
        offers << QStringLiteral("application/x-%1=hang").arg(number);
    auto& owner = userCopies(offers);
    EXPECT_EQ(snapshot(), PasteboardSnapshot());
    EXPECT_EQ(owner.linesBeforeCopyingAgain(), 1 + 8);
}

TEST_F(X11PasteboardReadTest, ATransferThatStallsIsLeftOutAloneOfAll) {
    giveUpSoon();
    userCopies({QStringLiteral("image/png=stall"), QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, AnOwnerThatNeverListsItsTargetsGivesNoSnapshot) {
    giveUpSoon();
    userCopies({QStringLiteral("TARGETS=hang")});
    EXPECT_EQ(snapshot(), std::nullopt);
}

TEST_F(X11PasteboardReadTest, AnOwnerThatAnswersTooLateGoesOnRunning) {
    const auto xclip = xclipCopies("a");
    giveUpSoon();
    kill(static_cast<pid_t>(xclip->processId()), SIGSTOP);
    EXPECT_EQ(snapshot(), std::nullopt);
    kill(static_cast<pid_t>(xclip->processId()), SIGCONT);
    // An X error would end it.
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, AnOwnerTooSimpleToListItsTargetsIsAskedForText) {
    userCopies({QStringLiteral("TARGETS=refuse"), QStringLiteral("STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, AnOwnerThatRefusesEverythingGivesNoSnapshot) {
    userCopies({QStringLiteral("TARGETS=refuse")});
    EXPECT_EQ(snapshot(), std::nullopt);
}

TEST_F(X11PasteboardReadTest, ListedButUnreadableContentsGiveAnEmptySnapshot) {
    userCopies({QStringLiteral("UTF8_STRING=refuse")});
    EXPECT_EQ(snapshot(), PasteboardSnapshot());
}

TEST_F(X11PasteboardReadTest, AnOwnerThatEndsWhileItIsReadLeavesWhatItHasDelivered) {
    userCopies({QStringLiteral("UTF8_STRING=text:a"), QStringLiteral("image/png=exit")});
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, ACopyMadeWhileReadingIsWhatIsRead) {
    auto& slow = userCopies({QStringLiteral("UTF8_STRING=text:old"), QStringLiteral("x/y=hang")});
    beginSnapshot();
    ASSERT_TRUE(slow.prints("asked x/y"));
    const ClipboardOwner newer(server, {QStringLiteral("UTF8_STRING=text:new")});
    EXPECT_EQ(finishSnapshot(), (PasteboardSnapshot{{{"UTF8_STRING", "new"}}}));
}

TEST_F(X11PasteboardReadTest, WhatGoesBeyondTheBoundIsLeftOut) {
    auto limits = patient();
    limits.snapshotBytes = 1'000'000;
    open(limits);
    userCopies({QStringLiteral("image/png=pattern:2000000"), QStringLiteral("image/bmp=endless"),
                QStringLiteral("UTF8_STRING=text:a")});
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, SnapshotsAreAnsweredInOrder) {
    userCopies("a");
    std::vector<int> answers;
    const auto note = [&answers](int number) {
        return [&answers, number](const auto&) { answers.push_back(number); };
    };
    const auto first = pasteboard().snapshot(note(1));
    const auto second = pasteboard().snapshot(note(2));
    EXPECT_TRUE(waitUntil([&] { return answers.size() == 2; }));
    EXPECT_EQ(answers, (std::vector<int>{1, 2}));
}

TEST_F(X11PasteboardReadTest, AQuestionThatOutlivesThePasteboardIsNotAnswered) {
    userCopies({QStringLiteral("TARGETS=hang")});
    beginSnapshot();
    quit();
    userCopies("a");
    open();
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "a"}}));
}

TEST_F(X11PasteboardReadTest, WithoutAnXServerThereIsNoSnapshot) {
    QtScheduler scheduler;
    X11Pasteboard nowhere(scheduler, "/nowhere:99");
    QString reason;
    const auto setting = nowhere.setString(QStringLiteral("a"), [&](const auto& outcome) {
        if (!outcome) reason = outcome.error().reason;
    });
    nowhere.restore({{{"UTF8_STRING", "b"}}});
    bool isAbsent = false;
    const auto question = nowhere.snapshot([&](const auto& answer) { isAbsent = !answer; });
    EXPECT_TRUE(waitUntil([&] { return isAbsent; }));
    EXPECT_TRUE(reason.contains(QStringLiteral("no X server"))) << reason.toStdString();
}

TEST_F(X11PasteboardReadTest, AnXServerThatEndsMeansNoSnapshot) {
    userCopies("a");
    (void)dictate(QStringLiteral("b"));
    server.end();
    EXPECT_TRUE(waitUntil([this] { return !snapshot(); }));
    EXPECT_TRUE(set(QStringLiteral("c")));
    EXPECT_EQ(snapshot(), std::nullopt);
}

TEST_F(X11PasteboardReadTest, AnXServerThatHangsDoesNotKeepTheProgramFromEnding) {
    auto limits = patient();
    limits.snapshot = limits.handover = 0ms;
    open(limits);
    (void)dictate(QStringLiteral("a"));
    const auto serverId = static_cast<pid_t>(server.processId());
    kill(serverId, SIGSTOP);
    beginSnapshot();
    order(QStringLiteral("b"));
    quit();
    kill(serverId, SIGCONT);
}

}  // namespace
}  // namespace quietlark
