#include <memory>
#include <ostream>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include "peers/x_server.h"
#include "platform/linux/x11/x11_key_synthesizer.h"
#include "platform/x11/device_keyboard.h"
#include "platform/x11/paste_target.h"
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

std::unique_ptr<PasteTarget> makeXterm() {
    return makeTerminal(QStringLiteral("xterm"),
                        {QStringLiteral("-xrm"),
                         QStringLiteral("XTerm*VT100.translations: #override Ctrl Shift <Key>v: "
                                        "insert-selection(CLIPBOARD)"),
                         QStringLiteral("-e")});
}

struct Case {
    const char* name;
    std::unique_ptr<PasteTarget> (*make)();
    const char* layout;
    int heldKey = KEY_RESERVED;
};

void PrintTo(const Case& one, std::ostream* stream) {
    *stream << one.name;
}

const Case cases[] = {
    {"GtkEditorAmerican", makeMousepad, "us"},
    {"GtkEditorDvorak", makeMousepad, "us(dvorak)"},
    {"GtkEditorRussian", makeMousepad, "ru"},
    {"GtkEditorRussianBesideDvorak", makeMousepad, "ru,us(dvorak)"},
    {"GtkEditorWithShiftHeld", makeMousepad, "us", KEY_LEFTSHIFT},
    {"GtkEditorWithAltHeld", makeMousepad, "us", KEY_LEFTALT},
    {"QtEditorAmerican", makeFeatherPad, "us"},
    {"QtEditorDvorak", makeFeatherPad, "us(dvorak)"},
    {"QtEditorRussian", makeFeatherPad, "ru"},
    {"QtEditorRussianBesideDvorak", makeFeatherPad, "ru,us(dvorak)"},
    {"QtEditorWithShiftHeld", makeFeatherPad, "us", KEY_LEFTSHIFT},
    {"QtEditorWithAltHeld", makeFeatherPad, "us", KEY_LEFTALT},
    {"VteTerminalAmerican", makeSakura, "us"},
    {"VteTerminalDvorak", makeSakura, "us(dvorak)"},
    {"VteTerminalRussian", makeSakura, "ru"},
    {"VteTerminalRussianBesideDvorak", makeSakura, "ru,us(dvorak)"},
    {"VteTerminalWithSuperHeld", makeSakura, "us", KEY_LEFTMETA},
    {"XtermAmerican", makeXterm, "us"},
    {"XtermDvorak", makeXterm, "us(dvorak)"},
};

class PasteInto : public ::testing::TestWithParam<Case> {
protected:
    void setLayout(const char* layout) {
        m_server.run(QStringLiteral("setxkbmap"), {QString::fromLatin1(layout)});
    }

    /// Another program owns the clipboard.
    void copy(const QByteArray& text) {
        m_server.run(QStringLiteral("sh"), {QStringLiteral("-c"),
                                            QStringLiteral("printf %s \"$0\" | xclip -in "
                                                           "-selection clipboard >/dev/null"),
                                            QString::fromUtf8(text)});
    }

    XServer m_server;
    DeviceKeyboard m_keyboard{m_server.display()};
    X11KeyConnection m_connection{m_server.display()};
    X11KeySynthesizer m_synthesizer{m_connection};
};

INSTANTIATE_TEST_SUITE_P(A, PasteInto, ::testing::ValuesIn(cases),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace

TEST_P(PasteInto, TheTextOfTheClipboardArrives) {
    const QByteArray text = "Gr\u00fc\u00dfe, \u043c\u0438\u0440";
    const auto target = GetParam().make();
    setLayout("us");
    copy(text);
    ASSERT_TRUE(target->open(m_server, m_synthesizer));

    setLayout(GetParam().layout);
    const auto held = static_cast<XKeycode>(GetParam().heldKey + 8);
    if (GetParam().heldKey != KEY_RESERVED) m_keyboard.press(held);
    EXPECT_TRUE(m_synthesizer.post(key_code::v, modifier::command));
    if (GetParam().heldKey != KEY_RESERVED) m_keyboard.release(held);

    QByteArray arrived = target->contentsEndingWith(text).trimmed();
    // What was typed to see whether the program takes keys; one editor adds the end of the line.
    while (arrived.startsWith('x') || arrived.startsWith('\n'))
        arrived.remove(0, 1);
    EXPECT_EQ(arrived.toStdString(), text.toStdString());
}
