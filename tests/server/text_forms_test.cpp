#include "server/text_forms.h"

#include <limits>

#include <gtest/gtest.h>

namespace quietlark {

TEST(TextFormsTest, DecimalsAreRoundedAndFilledUp) {
    EXPECT_EQ(decimals(4.5), "4.50");
    EXPECT_EQ(decimals(-0.126), "-0.13");
    EXPECT_EQ(decimals(0.00012, 4), "0.0001");
    EXPECT_EQ(decimals(std::numeric_limits<double>::max()).size(), 309U + 3U);
}

TEST(TextFormsTest, LowerCaseChangesLettersAlone) {
    EXPECT_EQ(lowerCase("Az-Z9[\xc3\x84"), "az-z9[\xc3\x84");
}

TEST(TextFormsTest, HexadecimalHasTwoDigits) {
    EXPECT_EQ(hexadecimal(0x0a), "0a");
    EXPECT_EQ(hexadecimal(0xf1), "f1");
}

}  // namespace quietlark
