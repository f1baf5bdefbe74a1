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

    /// Another program is about to have a text selected.
    void beginToSelect(const char* text) {
        server.run(QStringLiteral("sh"),
                   {QStringLiteral("-c"),
                    QStringLiteral("printf %s \"$0\" | xclip -in -selection primary >/dev/null"),
                    QString::fromUtf8(text)});
    }

    /// Another program's text is selected.
    void select(const char* text) {
        beginToSelect(text);
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

/// A text is set while the program whose text is selected does not answer.
class X11PasteboardHungSelectionTest : public X11PasteboardPrimaryTest {
protected:
    void SetUp() override {
        X11PasteboardPrimaryTest::SetUp();
        m_selecting.emplace(server.display().constData());
        (void)m_selecting->own("PRIMARY");
        userCopies("copied");
        terminal.takeFocus();
        m_before = snapshot().value_or(PasteboardSnapshot());
        m_setting = pasteboard().setString(QStringLiteral("dictated"), [this](const auto& outcome) {
            m_isSet = outcome.has_value();
        });
        m_selecting->waitFor([](const xcb_generic_event_t& event) {
            return event.response_type == XCB_SELECTION_REQUEST;
        });
    }

    void selectingProgramEnds() { m_selecting.reset(); }

    /// Whether the text was set, once that is known.
    bool isSet() {
        EXPECT_TRUE(waitUntil([this] { return m_isSet.has_value(); }));
        return m_isSet.value_or(false);
    }

    PasteboardSnapshot m_before;

private:
    std::optional<XPeer> m_selecting;
    Cancellable m_setting;
    std::optional<bool> m_isSet;
};

TEST_F(X11PasteboardHungSelectionTest, TheClipboardIsNotTakenBeforeTheSelectionIsRead) {
    EXPECT_EQ(copied(), "copied");
    selectingProgramEnds();
    EXPECT_TRUE(isSet());
    EXPECT_EQ(selected(), "dictated");
    EXPECT_EQ(copied(), "dictated");
    restore(m_before);
    EXPECT_EQ(selected(), "");
    EXPECT_EQ(copied(), "copied");
}

TEST_F(X11PasteboardHungSelectionTest, WhatIsSelectedMeanwhileIsWhatComesBack) {
    beginToSelect("newer");
    EXPECT_TRUE(isSet());
    EXPECT_EQ(selected(), "dictated");
    restore(m_before);
    EXPECT_EQ(selected(), "newer");
}

TEST_F(X11PasteboardHungSelectionTest, WhatIsCopiedMeanwhileIsNotCovered) {
    userCopies("newer");
    selectingProgramEnds();
    EXPECT_FALSE(isSet());
    EXPECT_EQ(copied(), "newer");
}

TEST_F(X11PasteboardHungSelectionTest, ATextThatIsToBeKeptIsSetEvenWhenTheProgramEnds) {
    const auto manager = server.start(peerProgram("clipboard_manager"), {});
    ASSERT_EQ(manager->readLine(), "managing");
    pasteboard().keepString();
    quit();
    EXPECT_EQ(copied(), "dictated");
}

}  // namespace
}  // namespace quietlark
