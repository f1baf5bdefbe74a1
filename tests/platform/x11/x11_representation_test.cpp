#include "platform/linux/x11/x11_representation.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

TEST(X11RepresentationTest, BytesOfATypeCalledLikeTheTargetAreNamedAfterTheTarget) {
    const X11Representation image{"image/png", "image/png", 8, "pixels"};
    EXPECT_EQ(image.captured(), (CapturedType{"image/png", "pixels"}));
}

TEST(X11RepresentationTest, ANameWithoutTypeIsTheTypeAsWell) {
    const auto image = X11Representation::from({"image/png", "pixels"});
    EXPECT_EQ(image, (X11Representation{"image/png", "image/png", 8, "pixels"}));
}

class X11RepresentationRoundTrip : public testing::TestWithParam<X11Representation> {};

TEST_P(X11RepresentationRoundTrip, GivesBackWhatItWas) {
    EXPECT_EQ(X11Representation::from(GetParam().captured()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Representations, X11RepresentationRoundTrip,
                         testing::Values(X11Representation{"UTF8_STRING", "UTF8_STRING", 8, "a"},
                                         X11Representation{"TEXT", "UTF8_STRING", 8, "a"},
                                         X11Representation{"atoms", "ATOM", 32, "aaaa"},
                                         X11Representation{"ATOM", "ATOM", 32, "aaaa"},
                                         X11Representation{"words", "INTEGER", 16, "aa"},
                                         X11Representation{"text/plain;charset=utf-8", "text/plain",
                                                           8, "a"},
                                         X11Representation{"a\nb", "STRING", 8, "a"},
                                         X11Representation{"a\nb\n8", "STRING", 8, "a"}));

TEST(X11RepresentationTest, ANameThatOnlyLooksLikeOneWithATypeIsTakenAsItIs) {
    EXPECT_EQ(X11Representation::from({"a\nb", "a"}).target, "a\nb");
    EXPECT_EQ(X11Representation::from({"\n", "a"}).target, "\n");
    EXPECT_EQ(X11Representation::from({"a\nb\nc", "a"}).format, 8);
}

}  // namespace
}  // namespace quietlark
