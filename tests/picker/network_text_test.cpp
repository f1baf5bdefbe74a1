#include "picker/network_text.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

std::string shown(const QString& text, qsizetype maxLength = 20) {
    return shownNetworkText(text, maxLength).toStdString();
}

TEST(NetworkTextTest, AnOrdinaryNameIsShownAsItIs) {
    EXPECT_EQ(shown(QStringLiteral("Büro “2”")), "Büro “2”");
    EXPECT_EQ(shown(QString()), "");
}

TEST(NetworkTextTest, LinesAndTabsAreFoldedIntoOneLine) {
    EXPECT_EQ(shown(QStringLiteral(" a\n\tb\u2028c ")), "a b c");
}

TEST(NetworkTextTest, ControlCharactersAndOverridesAreLeftOut) {
    EXPECT_EQ(shown(QStringLiteral("a\u001b[31mb\u202ec")), "a[31mbc");
}

TEST(NetworkTextTest, ALongHostLeavesThePortWhole) {
    EXPECT_EQ(shownAddress(QStringLiteral("box.local"), 8001), QStringLiteral("box.local:8001"));
    const QString address = shownAddress(QString(250, u'a'), 65535);
    EXPECT_TRUE(address.endsWith(QStringLiteral("a…:65535")));
    EXPECT_EQ(address.size(), maxShownLength + 6);
}

TEST(NetworkTextTest, AServerWithoutANameThatShowsIsCalledByItsAddress) {
    const QString host = QStringLiteral("box.local");
    EXPECT_EQ(shownServerName(QStringLiteral("Box"), host, 1), QStringLiteral("Box"));
    for (const QString& name : {QString(), QStringLiteral("\x07"), QStringLiteral("\u200b\u200d")})
        EXPECT_EQ(shownServerName(name, host, 1), QStringLiteral("box.local:1"));
}

TEST(NetworkTextTest, MarkupStaysText) {
    EXPECT_EQ(shown(QStringLiteral("<b>x</b>")), "<b>x</b>");
}

TEST(NetworkTextTest, ALongTextIsCutOff) {
    EXPECT_EQ(shown(QString(20, u'a')), std::string(20, 'a'));
    EXPECT_EQ(shown(QString(21, u'a')), std::string(19, 'a') + "…");
    EXPECT_EQ(shown(QString(100'000, u'a')).size(), 19 + std::string("…").size());
}

TEST(NetworkTextTest, ACharacterIsNotCutInHalf) {
    const QString lark = QStringLiteral("🐦");
    EXPECT_EQ(shown(lark.repeated(3), 4), "🐦…");
}

}  // namespace
}  // namespace quietlark
