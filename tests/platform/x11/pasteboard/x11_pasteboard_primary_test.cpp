#include "platform/x11/keys/key_window.h"
#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

/// The user dictates into a terminal that pastes what was selected last.
class X11PasteboardPrimaryTest : public X11PasteboardTest {
protected:
    void dictateInto(KeyWindow& window) {
        window.takeFocus();
        m_before = dictate(QStringLiteral("dictated"));
    }

    void restoreAll() { restore(m_before); }

    /// Another program's text is selected.
    void select(const char* text) {
        server.run(QStringLiteral("sh"),
                   {QStringLiteral("-c"),
                    QStringLiteral("printf %s \"$0\" | xclip -in -selection primary >/dev/null"),
                    QString::fromUtf8(text)});
        // It has left a process behind that is about to.
        EXPECT_TRUE(waitUntil([this, text] { return selected() == text; }));
    }

    QByteArray selected() {
        return server.run(
            QStringLiteral("xclip"),
            {QStringLiteral("-out"), QStringLiteral("-selection"), QStringLiteral("primary")});
    }

    QByteArray copied() { return ClipboardReader(server).text(); }

    KeyWindow terminal{server.display(), "XTerm"};
    KeyWindow editor{server.display(), "Editor"};

private:
    PasteboardSnapshot m_before;
};

TEST_F(X11PasteboardPrimaryTest, TheTextIsInBothPlacesAndBothAreRestored) {
    userCopies("copied");
    select("selected");
    dictateInto(terminal);
    EXPECT_EQ(selected(), "dictated");
    EXPECT_EQ(copied(), "dictated");
    restoreAll();
    EXPECT_EQ(selected(), "selected");
    EXPECT_EQ(copied(), "copied");
}

TEST_F(X11PasteboardPrimaryTest, WhereNothingWasSelectedNothingIsAfterwards) {
    dictateInto(terminal);
    EXPECT_EQ(selected(), "dictated");
    restoreAll();
    EXPECT_EQ(selected(), "");
}

TEST_F(X11PasteboardPrimaryTest, ForOtherProgramsTheSelectionIsLeftAlone) {
    select("selected");
    dictateInto(editor);
    EXPECT_EQ(selected(), "selected");
    EXPECT_EQ(copied(), "dictated");
}

TEST_F(X11PasteboardPrimaryTest, ASelectionThatWasBroughtBackIsNotPastedInPlaceOfTheText) {
    select("selected");
    dictateInto(terminal);
    restoreAll();
    dictateInto(editor);
    EXPECT_EQ(selected(), "dictated");
    restoreAll();
    EXPECT_EQ(selected(), "selected");
}

TEST_F(X11PasteboardPrimaryTest, WhatIsSelectedMeanwhileStays) {
    select("selected");
    dictateInto(terminal);
    select("newer");
    restoreAll();
    EXPECT_EQ(selected(), "newer");
}

TEST_F(X11PasteboardPrimaryTest, ASecondDictationStillBringsBackWhatWasSelected) {
    select("selected");
    dictateInto(terminal);
    restoreAll();
    dictateInto(terminal);
    dictateInto(terminal);
    EXPECT_EQ(selected(), "dictated");
    restoreAll();
    EXPECT_EQ(selected(), "selected");
}

TEST_F(X11PasteboardPrimaryTest, ATextThatIsKeptIsKeptOnTheClipboardAlone) {
    select("selected");
    dictateInto(terminal);
    pasteboard().keepString();
    settle();
    EXPECT_EQ(selected(), "selected");
    EXPECT_EQ(copied(), "dictated");
}

TEST_F(X11PasteboardPrimaryTest, ASelectionThatCannotBeReadDoesNotHinderPasting) {
    auto limits = patient();
    limits.snapshot = std::chrono::milliseconds(300);
    open(limits);
    XPeer silent(server.display().constData());
    (void)silent.own("PRIMARY");
    dictateInto(terminal);
    EXPECT_EQ(selected(), "dictated");
    restoreAll();
    EXPECT_EQ(selected(), "");
}

}  // namespace
}  // namespace quietlark
