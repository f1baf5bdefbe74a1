#include "hotkeys/hotkey_display.h"

#include <gtest/gtest.h>

#include "hotkeys/hotkey_parse.h"

namespace quietlark {
namespace {

constexpr KeyCode space = 49;
constexpr KeyCode leftArrow = 123;
constexpr KeyCode keypadEnter = 76;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

tl::expected<QString, HotkeyDisplay::CaptureError> specOf(KeyCode key, ModifierFlags flags = 0) {
    return HotkeyDisplay::spec({KeyEvent::Kind::KeyDown, key, flags});
}

TEST(HotkeyDisplayTest, OptionSpaceIsStoredAsAltPlusSpaceAndShownWithItsSymbol) {
    EXPECT_EQ(specOf(space, modifier::option), text("alt+space"));
    EXPECT_EQ(HotkeyDisplay::display(text("alt+space")), text("⌥Space"));
    EXPECT_EQ(HotkeyDisplay::displayJoined(text("alt+space")), text("⌥+Space"));
}

TEST(HotkeyDisplayTest, ModifiersAreWrittenInAFixedOrder) {
    EXPECT_EQ(specOf(space, modifier::control | modifier::option), text("ctrl+alt+space"));
    EXPECT_EQ(specOf(0, modifier::relevant), text("ctrl+alt+shift+cmd+fn+a"));
    EXPECT_EQ(HotkeyDisplay::display(text("a+fn+cmd+shift+alt+ctrl")), text("⌃⌥⇧⌘fn A"));
    EXPECT_EQ(HotkeyDisplay::displayJoined(text("a+fn+cmd")), text("⌘+fn+A"));
}

TEST(HotkeyDisplayTest, AnArrowKeyAloneIsWrittenWithoutFn) {
    EXPECT_EQ(specOf(leftArrow, modifier::function), text("left"));
}

TEST(HotkeyDisplayTest, AKeyCodeWithoutATokenCannotBeCapturedButHasALabel) {
    const HotkeyDisplay::CaptureError unknown{HotkeyDisplay::CaptureError::Kind::unknownKeyCode,
                                              keypadEnter};
    EXPECT_EQ(specOf(keypadEnter).error(), unknown);
    EXPECT_EQ(HotkeyDisplay::renderKeyLabel(keypadEnter), text("key 76"));
}

TEST(HotkeyDisplayTest, AnEmptySpecShowsNone) {
    EXPECT_EQ(HotkeyDisplay::display({}), text("(none)"));
    EXPECT_EQ(HotkeyDisplay::displayJoined({}), text("(none)"));
}

TEST(HotkeyDisplayTest, ASpecThatDoesNotParseShowsAsItStandsAndHasNoChips) {
    EXPECT_EQ(HotkeyDisplay::display(text("cmd+foo")), text("cmd+foo"));
    EXPECT_EQ(HotkeyDisplay::displayJoined(text("a+b")), text("a+b"));
    EXPECT_TRUE(HotkeyDisplay::chips(text("cmd+foo")).empty());
}

TEST(HotkeyDisplayTest, ModifiersAloneShowNoKey) {
    EXPECT_EQ(HotkeyDisplay::display(text("cmd+alt")), text("⌥⌘"));
    EXPECT_EQ(HotkeyDisplay::chips(text("fn")).size(), 1u);
}

TEST(HotkeyDisplayTest, EachModifierAndTheKeyHaveAChip) {
    const auto chips = HotkeyDisplay::chips(text("fn+cmd+shift+alt+ctrl+pageup"));
    ASSERT_EQ(chips.size(), 6u);
    QStringList labels;
    for (const auto& chip : chips)
        labels << chip.label;
    EXPECT_EQ(labels.join(u'|'), text("Ctrl|Opt|Shift|Cmd||Pg Up"));
    EXPECT_EQ(chips.front().symbol, text("⌃"));
    EXPECT_FALSE(chips.back().symbol);
    EXPECT_NE(chips[0].id, chips[1].id);
}

TEST(HotkeyDisplayTest, KeysOutsideTheTableShowTheirToken) {
    EXPECT_EQ(HotkeyDisplay::renderKeyLabel(0), text("A"));
    EXPECT_EQ(HotkeyDisplay::renderKeyLabel(24), text("="));
    EXPECT_EQ(HotkeyDisplay::renderKeyLabel(36), text("⏎"));
}

TEST(HotkeyDisplayTest, WhatIsCapturedParsesToWhatWasPressed) {
    for (const KeyCode key : HotkeyParse::keyCodes()) {
        const auto parsed = HotkeyParse::parse(specOf(key, modifier::control).value());
        EXPECT_EQ(parsed.value(), (Hotkey{modifier::control, key}));
    }
}

}  // namespace
}  // namespace quietlark
