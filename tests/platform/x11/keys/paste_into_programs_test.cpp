#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include "peers/x_server.h"
#include "platform/linux/x11/keys/x11_key_synthesizer.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/x11/keys/device_keyboard.h"
#include "platform/x11/keys/paste_target.h"
#include "support/wait.h"

using namespace quietlark;

namespace {

std::unique_ptr<PasteTarget> makeMousepad() {
    return makeEditor(QStringLiteral("mousepad"), {QStringLiteral("--disable-server")});
}

std::unique_ptr<PasteTarget> makeFeatherPad() {
    return makeEditor(QStringLiteral("featherpad"), {QStringLiteral("--standalone")});
}

std::unique_ptr<PasteTarget> makeSakura() {
    return makeTerminal(QStringLiteral("sakura"), {QStringLiteral("-e")});
}

// As it comes.
std::unique_ptr<PasteTarget> makeXterm() {
    return makeTerminal(QStringLiteral("xterm"), {QStringLiteral("-e")});
}

// Whose user prefers the clipboard.
std::unique_ptr<PasteTarget> makeXtermOfTheClipboard() {
    return makeTerminal(QStringLiteral("xterm"),
                        {QStringLiteral("-xrm"), QStringLiteral("XTerm*selectToClipboard: true"),
                         QStringLiteral("-e")});
}

struct Case {
    const char* name;
    std::unique_ptr<PasteTarget> (*make)();
    const char* layout;
    std::vector<int> heldKeys = {};
};

void PrintTo(const Case& one, std::ostream* stream) {
    *stream << one.name;
}

const Case cases[] = {
    {"GtkEditorAmerican", makeMousepad, "us"},
    {"GtkEditorDvorak", makeMousepad, "us(dvorak)"},
    {"GtkEditorRussian", makeMousepad, "ru"},
    {"GtkEditorRussianBesideDvorak", makeMousepad, "ru,us(dvorak)"},
    {"GtkEditorWithShiftHeld", makeMousepad, "us", {KEY_LEFTSHIFT}},
    {"GtkEditorWithAltHeld", makeMousepad, "us", {KEY_LEFTALT}},
    {"QtEditorAmerican", makeFeatherPad, "us"},
    {"QtEditorDvorak", makeFeatherPad, "us(dvorak)"},
    {"QtEditorRussian", makeFeatherPad, "ru"},
    {"QtEditorRussianBesideDvorak", makeFeatherPad, "ru,us(dvorak)"},
    {"QtEditorWithShiftHeld", makeFeatherPad, "us", {KEY_LEFTSHIFT}},
    {"QtEditorWithAltHeld", makeFeatherPad, "us", {KEY_LEFTALT}},
    {"VteTerminalAmerican", makeSakura, "us"},
    {"VteTerminalDvorak", makeSakura, "us(dvorak)"},
    {"VteTerminalRussian", makeSakura, "ru"},
    {"VteTerminalRussianBesideDvorak", makeSakura, "ru,us(dvorak)"},
    {"VteTerminalWithSuperHeld", makeSakura, "us", {KEY_LEFTMETA}},
    {"XtermAmerican", makeXterm, "us"},
    {"XtermDvorak", makeXterm, "us(dvorak)"},
    {"XtermRussianWithShiftHeld", makeXterm, "ru", {KEY_LEFTSHIFT}},
    {"XtermOfTheClipboard", makeXtermOfTheClipboard, "us"},
};

/// A desk with a keyboard, a clipboard and one program to paste into.
class PasteTest : public ::testing::Test {
protected:
    /// Types the shortcut while the user still has these keys down.
    void pasteHolding(const std::vector<int>& keys) {
        for (const int key : keys)
            m_keyboard.press(static_cast<XKeycode>(key + 8));
        EXPECT_TRUE(m_synthesizer.post(key_code::v, modifier::command));
        for (const int key : keys)
            m_keyboard.release(static_cast<XKeycode>(key + 8));
    }

    void setLayout(const char* layout) {
        m_server.run(QStringLiteral("setxkbmap"), {QString::fromLatin1(layout)});
    }

    /// Puts a text where the program that has the focus looks for it.
    void set(const QByteArray& text) {
        bool isSet = false;
        const auto question = m_pasteboard.setString(
            QString::fromUtf8(text), [&](const auto& outcome) { isSet = outcome.has_value(); });
        EXPECT_TRUE(waitUntil([&] { return isSet; }));
    }

    /// Another program owns the selection.
    void copy(const QByteArray& text, const char* selection = "clipboard") {
        m_server.run(QStringLiteral("sh"),
                     {QStringLiteral("-c"),
                      QStringLiteral("printf %s \"$0\" | xclip -in -selection $1 >/dev/null"),
                      QString::fromUtf8(text), QString::fromLatin1(selection)});
    }

    XServer m_server;
    DeviceKeyboard m_keyboard{m_server.display()};
    X11KeyConnection m_connection{m_server.display()};
    X11KeySynthesizer m_synthesizer{m_connection};
    QtScheduler m_scheduler;
    X11Pasteboard m_pasteboard{m_scheduler, m_server.display()};
};

class PasteInto : public PasteTest, public ::testing::WithParamInterface<Case> {};

struct Program {
    const char* name;
    std::unique_ptr<PasteTarget> (*make)();
};

void PrintTo(const Program& one, std::ostream* stream) {
    *stream << one.name;
}

const Program programs[] = {
    {"GtkEditor", makeMousepad},
    {"QtEditor", makeFeatherPad},
    {"VteTerminal", makeSakura},
};

class PasteWhileTheHotkeyIsHeld : public PasteTest,
                                  public ::testing::WithParamInterface<Program> {};

INSTANTIATE_TEST_SUITE_P(In, PasteWhileTheHotkeyIsHeld, ::testing::ValuesIn(programs),
                         [](const auto& one) { return std::string(one.param.name); });

INSTANTIATE_TEST_SUITE_P(A, PasteInto, ::testing::ValuesIn(cases),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace

TEST_P(PasteInto, TheTextOfThePasteboardArrives) {
    const QByteArray text = "Gr\u00fc\u00dfe, \u043c\u0438\u0440";
    const auto target = GetParam().make();
    setLayout("us");
    ASSERT_TRUE(target->open(m_server, m_synthesizer));
    set(text);

    setLayout(GetParam().layout);
    pasteHolding(GetParam().heldKeys);

    QByteArray arrived = target->contentsEndingWith(text).trimmed();
    // What was typed to see whether the program takes keys; one editor adds the end of the line.
    while (arrived.startsWith('x') || arrived.startsWith('\n'))
        arrived.remove(0, 1);
    EXPECT_EQ(arrived.toStdString(), text.toStdString());
}

TEST_F(PasteTest, WhatWasSelectedIsNotPastedIntoATerminalThatGetsTheFocusAfterTheTextWasSet) {
    const auto terminal = makeXterm();
    setLayout("us");
    copy("selected\n", "primary");
    set("text");
    ASSERT_TRUE(terminal->open(m_server, m_synthesizer));
    pasteHolding({});
    const QByteArray controlV = "\x16";
    const QByteArray arrived = terminal->contentsEndingWith(controlV);
    EXPECT_TRUE(arrived.endsWith(controlV));
    EXPECT_FALSE(arrived.contains("selected"));
}

// One launch of the program serves all combinations.
TEST_P(PasteWhileTheHotkeyIsHeld, TheTextArrivesOnEveryLayout) {
    const std::vector<int> modifiers = {KEY_LEFTCTRL, KEY_LEFTALT};
    const std::vector<int> hotkey = {KEY_LEFTCTRL, KEY_LEFTALT, KEY_SPACE};
    const auto target = GetParam().make();
    setLayout("us");
    // A key that repeats would type behind the text.
    m_server.run(QStringLiteral("xset"), {QStringLiteral("r"), QStringLiteral("off")});
    ASSERT_TRUE(target->open(m_server, m_synthesizer));

    int count = 0;
    for (const char* layout : {"us", "us(dvorak)", "ru"}) {
        for (const auto& held : {modifiers, hotkey}) {
            const QByteArray text = "text" + QByteArray::number(++count);
            copy(text);
            setLayout(layout);
            pasteHolding(held);
            const QByteArray arrived = target->contentsEndingWith(text).trimmed();
            ASSERT_TRUE(arrived.endsWith(text)) << layout << ": " << arrived.toStdString();
        }
    }
}
