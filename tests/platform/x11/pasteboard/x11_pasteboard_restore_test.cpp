#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

const PasteboardSnapshot copied{{{"UTF8_STRING", "copied"}}};

/// The contents from before the dictation come back.
class X11PasteboardRestoreTest : public X11PasteboardTest {
protected:
    void SetUp() override {
        X11PasteboardTest::SetUp();
        m_target.emplace(server);
        m_other.emplace(server);
    }

    /// The program that is pasted into, and any other.
    ClipboardReader& target() { return *m_target; }
    ClipboardReader& other() { return *m_other; }

    void targetHasFocus() { ASSERT_EQ(target().ask("focus"), "focused"); }

    /// The user has copied, dictates, and the time to restore has come.
    void copyDictateRestore() {
        userCopies("copied");
        targetHasFocus();
        const auto before = dictate(QStringLiteral("dictated"));
        restore(before);
    }

private:
    std::optional<ClipboardReader> m_target;
    std::optional<ClipboardReader> m_other;
};

TEST_F(X11PasteboardRestoreTest, WhatWasCopiedCanBePastedAgain) {
    userCopies("copied");
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(other().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, EveryRepresentationComesBackByteForByteAndInOrder) {
    userCopies({QStringLiteral("image/png=pattern:8000000"),
                QStringLiteral("text/html=text:<b>a</b>"), QStringLiteral("UTF8_STRING=text:a")});
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(other().ask("targets"), "TARGETS TIMESTAMP MULTIPLE image/png text/html UTF8_STRING");
    EXPECT_EQ(other().ask("get image/png"),
              describe(XPeer::Value{"image/png", 8, patternOf(8'000'000)}));
    EXPECT_EQ(other().ask("get text/html"), "text/html 8 8 <b>a</b>");
    EXPECT_EQ(other().ask("get UTF8_STRING"), "UTF8_STRING 8 1 a");
}

TEST_F(X11PasteboardRestoreTest, AllOfItCanBeReadAtOnce) {
    userCopies({QStringLiteral("image/png=pattern:8000000"), QStringLiteral("UTF8_STRING=text:a")});
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(other().ask("multiple image/png UTF8_STRING"),
              "image/png: " + describe(XPeer::Value{"image/png", 8, patternOf(8'000'000)}));
    EXPECT_EQ(other().nextLine(), "UTF8_STRING: UTF8_STRING 8 1 a");
}

TEST_F(X11PasteboardRestoreTest, TypesAndFormatsComeBackAsTheyWere) {
    userCopies({QStringLiteral("x-special/atoms=atoms:STRING,PRIMARY")});
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(other().ask("get x-special/atoms"),
              describe(XPeer::Value{"ATOM", 32, itemsOf32({XCB_ATOM_STRING, XCB_ATOM_PRIMARY})}));
}

TEST_F(X11PasteboardRestoreTest, AnEmptyPasteboardIsEmptyAgain) {
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(other().ask("owner"), "free");
}

TEST_F(X11PasteboardRestoreTest, ANewerCopyStays) {
    userCopies("copied");
    const auto before = dictate(QStringLiteral("dictated"));
    const ClipboardOwner newer(server, {QStringLiteral("UTF8_STRING=text:newer")});
    restore(before);
    EXPECT_EQ(other().text(), "newer");
}

TEST_F(X11PasteboardRestoreTest, ACopyAtTheMomentOfTheRestoreStays) {
    // The user's program below answers nobody.
    auto limits = patient();
    limits.snapshot = 0ms;
    open(limits);
    XPeer user(server.display().constData());
    const xcb_window_t window = user.createWindow(XCB_EVENT_MASK_NO_EVENT);
    for (int turn = 0; turn < 50; ++turn) {
        (void)dictate(QStringLiteral("dictated"));
        const xcb_timestamp_t before = user.time();
        xcb_timestamp_t now = before;
        while (now == before)
            now = user.time();
        xcb_set_selection_owner(user.get(), window, user.atom("CLIPBOARD"), now);
        xcb_flush(user.get());
        pasteboard().restore(copied);
        settle();
        ASSERT_EQ(user.owner("CLIPBOARD"), window) << "turn " << turn;
        xcb_set_selection_owner(user.get(), XCB_WINDOW_NONE, user.atom("CLIPBOARD"), now);
        xcb_flush(user.get());
    }
}

TEST_F(X11PasteboardRestoreTest, ANewerCopyStaysInPlaceOfAnEmptyPasteboard) {
    const auto before = dictate(QStringLiteral("dictated"));
    const ClipboardOwner newer(server, {QStringLiteral("UTF8_STRING=text:newer")});
    restore(before);
    EXPECT_EQ(other().text(), "newer");
}

TEST_F(X11PasteboardRestoreTest, WithoutATextNothingIsRestored) {
    restore(copied);
    EXPECT_EQ(other().ask("owner"), "free");
    userCopies("theirs");
    restore(copied);
    EXPECT_EQ(other().text(), "theirs");
}

TEST_F(X11PasteboardRestoreTest, ATransferThatHasBegunDeliversTheWholeText) {
    userCopies("copied");
    const auto before = dictate(QString(1'000'000, QLatin1Char('x')));
    EXPECT_EQ(other().ask("begin UTF8_STRING"), "begun");
    restore(before);
    EXPECT_EQ(other().ask("finish"),
              describe(XPeer::Value{"UTF8_STRING", 8, QByteArray(1'000'000, 'x')}));
    EXPECT_EQ(other().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, ATransferThatHasBegunSurvivesANewerCopy) {
    (void)dictate(QString(1'000'000, QLatin1Char('x')));
    EXPECT_EQ(other().ask("begin UTF8_STRING"), "begun");
    const ClipboardOwner newer(server, {QStringLiteral("UTF8_STRING=text:newer")});
    EXPECT_EQ(other().ask("finish"),
              describe(XPeer::Value{"UTF8_STRING", 8, QByteArray(1'000'000, 'x')}));
    EXPECT_EQ(other().text(), "newer");
}

TEST_F(X11PasteboardRestoreTest, ATargetThatIsLateStillGetsTheText) {
    copyDictateRestore();
    EXPECT_EQ(target().text(), "dictated");
    EXPECT_EQ(target().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, WhereTheFocusFollowsThePointerItsWindowIsTheTarget) {
    userCopies("copied");
    ASSERT_EQ(target().ask("hover"), "hovering");
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(target().text(), "dictated");
    EXPECT_EQ(target().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, ATargetThatIsLateSeesTheTextsTargets) {
    copyDictateRestore();
    EXPECT_TRUE(target().ask("targets").contains("x-kde-passwordManagerHint"));
    EXPECT_EQ(target().text("x-kde-passwordManagerHint"), "secret");
    EXPECT_EQ(target().text("text/plain"), "dictated");
    EXPECT_EQ(target().ask("targets"), "TARGETS TIMESTAMP MULTIPLE UTF8_STRING");
}

TEST_F(X11PasteboardRestoreTest, ATargetThatIsLateMayReadAllAtOnce) {
    copyDictateRestore();
    EXPECT_EQ(target().ask("multiple UTF8_STRING STRING"), "UTF8_STRING: UTF8_STRING 8 8 dictated");
    EXPECT_EQ(target().nextLine(), "STRING: STRING 8 8 dictated");
    EXPECT_EQ(target().nextLine(), "done");
    EXPECT_EQ(target().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, OthersGetTheRestoredContentsWhileTheTargetIsLate) {
    copyDictateRestore();
    EXPECT_EQ(other().ask("targets"), "TARGETS TIMESTAMP MULTIPLE UTF8_STRING");
    EXPECT_EQ(other().text(), "copied");
    EXPECT_EQ(target().text(), "dictated");
}

TEST_F(X11PasteboardRestoreTest, ATargetThatHasReadGetsTheRestoredContents) {
    userCopies("copied");
    targetHasFocus();
    const auto before = dictate(QStringLiteral("dictated"));
    EXPECT_EQ(target().text(), "dictated");
    restore(before);
    EXPECT_EQ(target().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, AManagerThatReadsAtOnceIsNotTheTarget) {
    userCopies("copied");
    targetHasFocus();
    const auto before = dictate(QStringLiteral("dictated"));
    EXPECT_EQ(other().text(), "dictated");
    restore(before);
    EXPECT_EQ(other().text(), "copied");
    EXPECT_EQ(target().text(), "dictated");
}

TEST_F(X11PasteboardRestoreTest, ListingTheTargetsIsNotReading) {
    userCopies("copied");
    targetHasFocus();
    const auto before = dictate(QStringLiteral("dictated"));
    EXPECT_FALSE(target().ask("targets").isEmpty());
    restore(before);
    EXPECT_EQ(target().text(), "dictated");
}

TEST_F(X11PasteboardRestoreTest, ATargetThatIsTooLateGetsTheRestoredContents) {
    auto limits = patient();
    limits.grace = 100ms;
    open(limits);
    copyDictateRestore();
    EXPECT_TRUE(waitUntil([this] { return !target().ask("targets").contains("passwordManager"); }));
    EXPECT_EQ(target().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, AnEmptyPasteboardIsEmptyForOthersWhileTheTargetIsLate) {
    targetHasFocus();
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(other().ask("get UTF8_STRING"), "refused");
    EXPECT_EQ(other().ask("targets"), "refused");
    EXPECT_EQ(target().text(), "dictated");
    EXPECT_TRUE(waitUntil([this] { return other().ask("owner") == "free"; }));
}

TEST_F(X11PasteboardRestoreTest, AnEmptyPasteboardIsEmptyAgainWhenTheTargetNeverReads) {
    auto limits = patient();
    limits.grace = 100ms;
    open(limits);
    targetHasFocus();
    restore(dictate(QStringLiteral("dictated")));
    EXPECT_TRUE(waitUntil([this] { return other().ask("owner") == "free"; }));
}

TEST_F(X11PasteboardRestoreTest, ANewerCopyStaysWhileTheTargetIsLate) {
    copyDictateRestore();
    const ClipboardOwner newer(server, {QStringLiteral("UTF8_STRING=text:newer")});
    EXPECT_EQ(target().text(), "newer");
    settle();
    EXPECT_EQ(other().text(), "newer");
}

TEST_F(X11PasteboardRestoreTest, ASnapshotIsWhatTheTextCovers) {
    userCopies("copied");
    (void)dictate(QStringLiteral("dictated"));
    EXPECT_EQ(snapshot(), copied);
    (void)dictate(QStringLiteral("more"));
    EXPECT_EQ(snapshot(), copied);
}

TEST_F(X11PasteboardRestoreTest, ASnapshotIsTheRestoredContentsWhileTheTargetIsLate) {
    copyDictateRestore();
    EXPECT_EQ(snapshot(), copied);
}

TEST_F(X11PasteboardRestoreTest, ADictationWhileTheTargetIsLateReplacesTheText) {
    copyDictateRestore();
    const auto before = dictate(QStringLiteral("more"));
    EXPECT_EQ(before, copied);
    EXPECT_EQ(target().text(), "more");
    restore(before);
    EXPECT_EQ(target().text(), "copied");
}

TEST_F(X11PasteboardRestoreTest, ManyDictationsKeepWhatWasCopiedOnce) {
    userCopies({QStringLiteral("image/png=pattern:500000"), QStringLiteral("text/plain=text:a")});
    for (int turn = 0; turn < 5; ++turn)
        restore(dictate(QStringLiteral("dictated")));
    EXPECT_EQ(other().ask("get image/png"),
              describe(XPeer::Value{"image/png", 8, patternOf(500'000)}));
    EXPECT_EQ(other().ask("targets"), "TARGETS TIMESTAMP MULTIPLE image/png text/plain");
}

TEST_F(X11PasteboardRestoreTest, ATextOverContentsThatCouldNotBeReadIsContentsItself) {
    userCopies({QStringLiteral("TARGETS=refuse")});
    ASSERT_EQ(snapshot(), std::nullopt);
    EXPECT_FALSE(set(QStringLiteral("dictated")));
    const auto read = snapshot();
    ASSERT_TRUE(read);
    EXPECT_EQ(read->front().front(), (CapturedType{"UTF8_STRING", "dictated"}));
}

}  // namespace
}  // namespace quietlark
