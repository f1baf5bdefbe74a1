#include <vector>

#include <QHash>
#include <gtest/gtest.h>

#include "servers/mdns_browser.h"

namespace quietlark {
namespace {

using Entry = MDNSBrowser::Entry;

const Entry sample{
    QStringLiteral("Office"),  QStringLiteral("box.local"), 8001, QStringLiteral("large"), 2.0,
    QStringLiteral("Apple M2")};

TEST(MDNSBrowserEntryTest, EqualityAndHashCoverEveryField) {
    std::vector<Entry> others(6, sample);
    others[0].name = QStringLiteral("Kitchen");
    others[1].host = QStringLiteral("pi.local");
    others[2].port = 8002;
    others[3].model.reset();
    others[4].rtf.reset();
    others[5].cpu = QStringLiteral("Apple M1");
    for (const Entry& other : others) {
        EXPECT_NE(sample, other);
        EXPECT_NE(qHash(sample), qHash(other));
    }
    EXPECT_EQ(qHash(sample), qHash(Entry(sample)));
}

TEST(MDNSBrowserEntryTest, BothZerosAreTheSameSpeed) {
    Entry zero = sample;
    Entry negativeZero = sample;
    zero.rtf = 0.0;
    negativeZero.rtf = -0.0;
    EXPECT_EQ(zero, negativeZero);
    EXPECT_EQ(qHash(zero), qHash(negativeZero));
}

TEST(MDNSBrowserEntryTest, AnAbsentTextIsNotAnEmptyOne) {
    Entry absent = sample;
    Entry empty = sample;
    absent.model.reset();
    empty.model = QString();
    EXPECT_NE(absent, empty);
    EXPECT_NE(qHash(absent), qHash(empty));
}

}  // namespace
}  // namespace quietlark
