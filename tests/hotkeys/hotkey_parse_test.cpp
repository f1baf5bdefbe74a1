#include "hotkeys/hotkey_parse.h"

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
}

}  // namespace
}  // namespace quietlark
