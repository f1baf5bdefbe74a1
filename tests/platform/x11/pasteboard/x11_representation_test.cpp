#include "platform/linux/x11/pasteboard/x11_representation.h"

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

TEST(X11RepresentationTest, EveryRepresentationComesBackFromItsName) {
    const X11Representation representations[] = {
        {"UTF8_STRING", "UTF8_STRING", 8, "a"},
        {"TEXT", "UTF8_STRING", 8, "a"},
        {"atoms", "ATOM", 32, "aaaa"},
        {"ATOM", "ATOM", 32, "aaaa"},
        {"words", "INTEGER", 16, "aa"},
        {"text/plain;charset=utf-8", "text/plain", 8, "a"},
        {"a\nb", "STRING", 8, "a"},
        {"a\nb\n8", "STRING", 8, "a"},
    };
    for (const auto& representation : representations) {
        EXPECT_EQ(X11Representation::from(representation.captured()), representation)
            << representation.target;
    }
}

TEST(X11RepresentationTest, ANameThatOnlyLooksLikeOneWithATypeIsTakenAsItIs) {
    EXPECT_EQ(X11Representation::from({"a\nb", "a"}).target, "a\nb");
    EXPECT_EQ(X11Representation::from({"\n", "a"}).target, "\n");
    EXPECT_EQ(X11Representation::from({"a\nb\nc", "a"}).format, 8);
}

}  // namespace
}  // namespace quietlark
