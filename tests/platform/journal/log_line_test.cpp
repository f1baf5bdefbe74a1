#include "platform/linux/journal/log_line.h"

#include <gtest/gtest.h>

namespace quietlark {

TEST(LogLineTest, PlainTextIsUnchanged) {
    EXPECT_EQ(singleLine(R"(transcribe ok: 0.42s chars=11 "naïve" 日本 C:\new)"),
              R"(transcribe ok: 0.42s chars=11 "naïve" 日本 C:\new)");
    EXPECT_EQ(singleLine(""), "");
}

TEST(LogLineTest, LineBreaksAndTabsAreEscaped) {
    EXPECT_EQ(singleLine("a\r\nb\tc"), "a\\r\\nb\\tc");
}

TEST(LogLineTest, TerminalSequencesAndNulAreEscaped) {
    using namespace std::string_view_literals;
    EXPECT_EQ(singleLine("\x1b[2J\x7f\0x"sv), "\\x1b[2J\\x7f\\x00x");
}

TEST(LogLineTest, TheSecondSetOfControlCharactersIsEscaped) {
    EXPECT_EQ(singleLine("a\xc2\x9b"
                         "2Jb"),
              "a\\x9b2Jb");
    EXPECT_EQ(singleLine("\xc2\x85"), "\\x85");
    EXPECT_EQ(singleLine("\xc2\xa0"), "\xc2\xa0");
}

TEST(LogLineTest, ACharacterCutInTwoIsKeptAsItIs) {
    EXPECT_EQ(singleLine("a\xc2"), "a\xc2");
}

}  // namespace quietlark
