#include "server/admission.h"

#include <gtest/gtest.h>

namespace quietlark {

TEST(AdmissionTest, OneIsServedWhileTheOthersWait) {
    Admission admission({.waiting = 2});
    const auto first = admission.enter(1);
    EXPECT_TRUE(first);
    EXPECT_TRUE(admission.enter(1));
    EXPECT_TRUE(admission.enter(1));
    EXPECT_FALSE(admission.enter(1));
    admission.leave(*first);
    EXPECT_TRUE(admission.enter(1));
}

TEST(AdmissionTest, AllTogetherHaveABound) {
    Admission admission({.waiting = 9, .totalBytes = 100});
    const auto first = admission.enter(60);
    EXPECT_TRUE(admission.receive(*first, 60));
    EXPECT_FALSE(admission.enter(41));
    const auto second = admission.enter(40);
    EXPECT_FALSE(admission.receive(*second, 41));
    EXPECT_TRUE(admission.receive(*second, 40));
    admission.leave(*first);
    const auto third = admission.enter(60);
    EXPECT_TRUE(admission.receive(*third, 60));
}

TEST(AdmissionTest, WhatHasOnlyBeenAnnouncedTakesNoRoom) {
    Admission admission({.waiting = 9, .totalBytes = 100});
    const auto first = admission.enter(100);
    const auto second = admission.enter(100);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(admission.enter(100));
    EXPECT_TRUE(admission.receive(*first, 100));
    EXPECT_FALSE(admission.receive(*second, 1));
}

TEST(AdmissionTest, WhoCameFirstComesToTheEnd) {
    Admission admission({.waiting = 9, .totalBytes = 200});
    const auto first = admission.enter(80);
    const auto second = admission.enter(90);
    const auto third = admission.enter(100);
    EXPECT_TRUE(admission.receive(*second, 60));
    EXPECT_TRUE(admission.receive(*third, 60));
    EXPECT_FALSE(admission.receive(*third, 1));
    EXPECT_FALSE(admission.receive(*second, 1));
    EXPECT_TRUE(admission.receive(*first, 80));
    admission.leave(*first);
    EXPECT_TRUE(admission.receive(*third, 40));
    EXPECT_TRUE(admission.receive(*second, 30));
    admission.leave(*second);
    admission.leave(*third);
    EXPECT_TRUE(admission.enter(200));
}

TEST(AdmissionTest, AnUploadThatFitsEvenBesideAllThatTheOlderOnesNeedGoesAhead) {
    Admission admission({.waiting = 9, .totalBytes = 200});
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(admission.enter(100));
    const auto last = admission.enter(100);
    EXPECT_TRUE(admission.receive(*last, 100));
}

TEST(AdmissionTest, AnEmptyHouseTakesAnyone) {
    Admission admission({.waiting = 0, .totalBytes = 1});
    const auto only = admission.enter(1000);
    EXPECT_TRUE(admission.receive(*only, 1000));
    EXPECT_FALSE(admission.enter(1));
}

}  // namespace quietlark
