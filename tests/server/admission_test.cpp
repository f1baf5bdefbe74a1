#include "server/admission.h"

#include <gtest/gtest.h>

namespace quietlark {

TEST(AdmissionTest, OneIsServedWhileTheOthersWait) {
    Admission admission({.waiting = 2});
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(admission.enter(1));
    EXPECT_FALSE(admission.enter(1));
    admission.leave(0);
    EXPECT_TRUE(admission.enter(1));
}

TEST(AdmissionTest, AllTogetherHaveABound) {
    Admission admission({.waiting = 9, .totalBytes = 100});
    EXPECT_TRUE(admission.enter(60));
    EXPECT_TRUE(admission.receive(60));
    EXPECT_FALSE(admission.enter(41));
    EXPECT_TRUE(admission.enter(40));
    EXPECT_FALSE(admission.receive(41));
    EXPECT_TRUE(admission.receive(40));
    admission.leave(60);
    EXPECT_TRUE(admission.enter(60));
    EXPECT_TRUE(admission.receive(60));
}

TEST(AdmissionTest, WhatHasOnlyBeenAnnouncedTakesNoRoom) {
    Admission admission({.waiting = 9, .totalBytes = 100});
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(admission.enter(100));
    EXPECT_TRUE(admission.receive(100));
    EXPECT_FALSE(admission.receive(1));
}

TEST(AdmissionTest, AnEmptyHouseTakesAnyone) {
    Admission admission({.waiting = 0, .totalBytes = 1});
    EXPECT_TRUE(admission.enter(1000));
    EXPECT_TRUE(admission.receive(1000));
    EXPECT_FALSE(admission.enter(1));
}

}  // namespace quietlark
