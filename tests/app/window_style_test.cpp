#include "app/window_style.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

TEST(WindowStyleTest, TheOnboardingIsAnOrdinaryWindow) {
    const WindowStyle expected{QStringLiteral("Welcome to Quietlark"), QSize(620, 500), false};
    EXPECT_EQ(onboardingStyle(), expected);
}

TEST(WindowStyleTest, ThePermissionsAlertFloats) {
    const WindowStyle expected{QStringLiteral("Quietlark needs permissions"), QSize(460, 300),
                               true};
    EXPECT_EQ(permissionsAlertStyle(), expected);
}

}  // namespace
}  // namespace quietlark
