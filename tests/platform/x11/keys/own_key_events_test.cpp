#include "platform/linux/x11/keys/own_key_events.h"

#include <gtest/gtest.h>

using namespace quietlark;

namespace {

constexpr std::uint16_t desk = 7;
constexpr std::uint16_t xtest = 5;
constexpr XKeycode keyV = 55;

RawKeyEvent press(std::uint32_t sequence, std::uint16_t device = xtest) {
    return {sequence, device, keyV, true};
}

RawKeyEvent release(std::uint32_t sequence, std::uint16_t device = xtest) {
    return {sequence, device, keyV, false};
}

}  // namespace

TEST(OwnKeyEvents, ClaimsWhatIsExpectedOnce) {
    OwnKeyEvents own;
    own.expect(press(10));
    own.expect(release(11));
    EXPECT_TRUE(own.claim(press(10)));
    EXPECT_TRUE(own.claim(release(11)));
    EXPECT_FALSE(own.claim(press(11)));
}

TEST(OwnKeyEvents, SomebodyElsesSameKeyAfterOursIsTheirs) {
    OwnKeyEvents own;
    own.expect(press(10));
    EXPECT_TRUE(own.claim(press(10)));
    EXPECT_FALSE(own.claim(press(10)));
}

TEST(OwnKeyEvents, SomebodyElsesKeyBetweenTwoOfOursIsTheirs) {
    OwnKeyEvents own;
    own.expect(press(10));
    own.expect(release(11));
    EXPECT_TRUE(own.claim(press(10)));
    EXPECT_FALSE(own.claim(release(10, desk)));
    EXPECT_TRUE(own.claim(release(11)));
}

TEST(OwnKeyEvents, AnEventThatNeverComesSwallowsNoLaterKey) {
    OwnKeyEvents own;
    own.expect(press(10));
    EXPECT_FALSE(own.claim(press(12)));
    EXPECT_FALSE(own.claim(press(12)));
}

TEST(OwnKeyEvents, AKeyFromBeforeTheRequestIsNotOurs) {
    OwnKeyEvents own;
    own.expect(press(10));
    EXPECT_FALSE(own.claim(press(9)));
    EXPECT_TRUE(own.claim(press(10)));
}

TEST(OwnKeyEvents, RequestNumbersMayWrapAround) {
    OwnKeyEvents own;
    own.expect(press(0xffffffff));
    own.expect(release(1));
    EXPECT_TRUE(own.claim(press(0xffffffff)));
    EXPECT_TRUE(own.claim(release(1)));
}
