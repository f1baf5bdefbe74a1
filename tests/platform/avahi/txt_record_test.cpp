#include "platform/linux/avahi/txt_record.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

using TxtRecord = ResolvedService::TxtRecord;

TEST(TxtRecordTest, SplitsEachStringAtItsFirstEqualsSign) {
    EXPECT_EQ(txtRecordFrom({"rtf=2", "model=a=b"}), (TxtRecord{{"rtf", "2"}, {"model", "a=b"}}));
}

TEST(TxtRecordTest, AKeyWithoutAValueIsEmpty) {
    EXPECT_EQ(txtRecordFrom({"rtf", "model="}), (TxtRecord{{"rtf", ""}, {"model", ""}}));
}

TEST(TxtRecordTest, AStringWithoutAKeyCountsForNothing) {
    EXPECT_TRUE(txtRecordFrom({"", "=2"}).isEmpty());
}

TEST(TxtRecordTest, OfTwoStringsWithOneKeyTheFirstCounts) {
    EXPECT_EQ(txtRecordFrom({"rtf=1", "rtf=2"}), (TxtRecord{{"rtf", "1"}}));
}

TEST(TxtRecordTest, KeysAndValuesAreAnyBytes) {
    const QByteArray bytes("\xff\x00=\xfe", 4);
    EXPECT_EQ(txtRecordFrom({bytes}), (TxtRecord{{QByteArray("\xff\x00", 2), "\xfe"}}));
}

TEST(TxtRecordTest, StringsThatAreTooLongAreLeftOut) {
    EXPECT_TRUE(txtRecordFrom({"rtf=" + QByteArray(252, '1')}).isEmpty());
    EXPECT_EQ(txtRecordFrom({"rtf=" + QByteArray(251, '1')}).size(), 1);
}

TEST(TxtRecordTest, NoMoreThanAHundredStringsAreRead) {
    QByteArrayList strings;
    for (int i = 0; i < 200; ++i)
        strings << "key" + QByteArray::number(i) + "=x";
    EXPECT_EQ(txtRecordFrom(strings).size(), 100);
}

}  // namespace
}  // namespace quietlark
