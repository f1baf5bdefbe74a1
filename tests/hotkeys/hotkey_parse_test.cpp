#include "hotkeys/hotkey_parse.h"

#include <iterator>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace quietlark {
namespace {

using HotkeyParse::parse;
using HotkeyParse::ParseError;
using Kind = ParseError::Kind;

Hotkey parsed(const char* spec) {
    return parse(QString::fromUtf8(spec)).value_or(Hotkey{});
}

ParseError refusal(const char* spec) {
    const auto result = parse(QString::fromUtf8(spec));
    EXPECT_FALSE(result) << spec;
    return result ? ParseError{} : result.error();
}

TEST(HotkeyParseTest, BlanksAroundTokensAndCaseDoNotMatter) {
    EXPECT_EQ(parsed("Cmd + Shift + Space"), (Hotkey{modifier::command | modifier::shift, 49}));
}

TEST(HotkeyParseTest, OrderOfTokensDoesNotMatter) {
    EXPECT_EQ(parsed("space+cmd"), parsed("cmd+space"));
}

TEST(HotkeyParseTest, ModifiersAloneAreAHotkeyWithoutKey) {
    EXPECT_EQ(parsed("fn"), (Hotkey{modifier::function, std::nullopt}));
    EXPECT_EQ(parsed("cmd+alt"), (Hotkey{modifier::command | modifier::option, std::nullopt}));
}

TEST(HotkeyParseTest, ASpecWithoutTokensIsEmpty) {
    for (const char* spec : {"", "+", " + "}) {
        const auto error = refusal(spec);
        EXPECT_EQ(error.kind, Kind::empty);
        EXPECT_EQ(error.localizedDescription(),
                  QStringLiteral("empty hotkey: ") + QString::fromLatin1(spec));
    }
}

TEST(HotkeyParseTest, TwoKeysAreRefusedWithTheWholeSpec) {
    const auto error = refusal("cmd+a+b");
    EXPECT_EQ(error, (ParseError{Kind::multipleNonModifierKeys, QStringLiteral("cmd+a+b")}));
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("multiple non-modifier keys in hotkey: cmd+a+b"));
}

TEST(HotkeyParseTest, AnUnknownTokenIsRefusedByItself) {
    const auto error = refusal("cmd+ Foo ");
    EXPECT_EQ(error, (ParseError{Kind::unknownToken, QStringLiteral("foo")}));
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("unknown key in hotkey: foo"));
}

TEST(HotkeyParseTest, TheFirstUnknownTokenEndsTheReading) {
    EXPECT_EQ(refusal("a+foo+b+bar").text, QStringLiteral("foo"));
}

TEST(HotkeyParseTest, ATabIsNotTrimmed) {
    EXPECT_EQ(refusal("ctrl+tab\t"), (ParseError{Kind::unknownToken, QStringLiteral("tab\t")}));
}

TEST(HotkeyParseTest, WinIsCommand) {
    EXPECT_EQ(parsed("win+f5"), (Hotkey{modifier::command, 96}));
}

TEST(HotkeyParseTest, AngleBracketsAroundATokenAreDropped) {
    EXPECT_EQ(parsed("<ctrl>+<space>"), (Hotkey{modifier::control, 49}));
}

TEST(HotkeyParseTest, EmptyPiecesAndRepeatedModifiersAreHarmless) {
    EXPECT_EQ(parsed("++ctrl++ctrl+control+a+"), (Hotkey{modifier::control, 0}));
}

TEST(HotkeyParseTest, EnterIsReturnAndDeleteDeletesBackwards) {
    EXPECT_EQ(parsed("enter"), parsed("return"));
    EXPECT_EQ(parsed("delete"), parsed("backspace"));
    EXPECT_EQ(parsed("esc"), parsed("escape"));
}

TEST(HotkeyParseTest, EveryTokenStandsForItsOwnCode) {
    EXPECT_EQ(HotkeyParse::keyCodes().size(), 83);
    EXPECT_EQ(HotkeyParse::modifierFlags().size(), 12);
    const auto& codes = HotkeyParse::keyCodes();
    for (auto token = codes.cbegin(); token != codes.cend(); ++token)
        EXPECT_EQ(parse(token.key()).value(), (Hotkey{0, token.value()}));
    const auto& flags = HotkeyParse::modifierFlags();
    for (auto token = flags.cbegin(); token != flags.cend(); ++token)
        EXPECT_EQ(parse(token.key()).value(), (Hotkey{token.value(), std::nullopt}));
}

TEST(HotkeyParseTest, EveryModifierTokenHasItsFlag) {
    const std::vector<std::pair<const char*, ModifierFlags>> tokens{
        {"cmd", 0x100000},    {"command", 0x100000}, {"meta", 0x100000}, {"win", 0x100000},
        {"alt", 0x80000},     {"option", 0x80000},   {"opt", 0x80000},   {"ctrl", 0x40000},
        {"control", 0x40000}, {"shift", 0x20000},    {"fn", 0x800000},   {"function", 0x800000},
    };
    EXPECT_EQ(std::ssize(tokens), HotkeyParse::modifierFlags().size());
    for (const auto& [token, flag] : tokens)
        EXPECT_EQ(parsed(token), (Hotkey{flag, std::nullopt})) << token;
}

TEST(HotkeyParseTest, EveryKeyTokenHasItsCode) {
    // clang-format off
    const std::vector<std::pair<const char*, KeyCode>> tokens{
        {"a", 0}, {"b", 11}, {"c", 8}, {"d", 2}, {"e", 14}, {"f", 3}, {"g", 5}, {"h", 4},
        {"i", 34}, {"j", 38}, {"k", 40}, {"l", 37}, {"m", 46}, {"n", 45}, {"o", 31}, {"p", 35},
        {"q", 12}, {"r", 15}, {"s", 1}, {"t", 17}, {"u", 32}, {"v", 9}, {"w", 13}, {"x", 7},
        {"y", 16}, {"z", 6},
        {"0", 29}, {"1", 18}, {"2", 19}, {"3", 20}, {"4", 21}, {"5", 23}, {"6", 22}, {"7", 26},
        {"8", 28}, {"9", 25},
        {"=", 24}, {"-", 27}, {"]", 30}, {"[", 33}, {"'", 39}, {";", 41}, {"\\", 42}, {",", 43},
        {"/", 44}, {".", 47}, {"`", 50},
        {"return", 36}, {"enter", 36}, {"tab", 48}, {"space", 49}, {"delete", 51},
        {"backspace", 51}, {"escape", 53}, {"esc", 53},
        {"f1", 122}, {"f2", 120}, {"f3", 99}, {"f4", 118}, {"f5", 96}, {"f6", 97}, {"f7", 98},
        {"f8", 100}, {"f9", 101}, {"f10", 109}, {"f11", 103}, {"f12", 111}, {"f13", 105},
        {"f14", 107}, {"f15", 113}, {"f16", 106}, {"f17", 64}, {"f18", 79}, {"f19", 80},
        {"f20", 90},
        {"home", 115}, {"pageup", 116}, {"end", 119}, {"pagedown", 121}, {"left", 123},
        {"right", 124}, {"down", 125}, {"up", 126},
    };
    // clang-format on
    EXPECT_EQ(std::ssize(tokens), HotkeyParse::keyCodes().size());
    for (const auto& [token, code] : tokens)
        EXPECT_EQ(parsed(token), (Hotkey{0, code})) << token;
}

}  // namespace
}  // namespace quietlark
