#include "server/json_text.h"

#include <gtest/gtest.h>

namespace quietlark {

TEST(JsonTextTest, PlainTextIsQuoted) {
    EXPECT_EQ(jsonString("three o'clock, naïve 日本"), "\"three o'clock, naïve 日本\"");
}

TEST(JsonTextTest, QuotesBackslashesAndControlCharactersAreEscaped) {
    EXPECT_EQ(jsonString("a\"b\\c\nd\x1f"), R"("a\"b\\c\u000ad\u001f")");
}

}  // namespace quietlark
