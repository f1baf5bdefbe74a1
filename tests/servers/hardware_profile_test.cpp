#include "servers/hardware_profile.h"

#include <gtest/gtest.h>

#include "fakes/fake_processor.h"

namespace quietlark {
namespace {

using Tier = AppleSiliconVariant::Tier;

TEST(HardwareProfileTest, SurroundingSpacesAndATrailingNewlineAreTrimmedBeforeParsing) {
    const FakeProcessor processor("  Apple M2 Pro \n");
    const HardwareProfile hardware(processor);
    EXPECT_EQ(hardware.brandString(), QStringLiteral("Apple M2 Pro"));
    EXPECT_EQ(hardware.appleSiliconVariant(), (AppleSiliconVariant{2, Tier::pro}));
}

TEST(HardwareProfileTest, ABrandThatCannotBeReadIsEmptyAndNoVariant) {
    const FakeProcessor processor;
    const HardwareProfile hardware(processor);
    EXPECT_EQ(hardware.brandString(), QString());
    EXPECT_EQ(hardware.appleSiliconVariant(), std::nullopt);
}

TEST(HardwareProfileTest, AnIntelProcessorIsNoVariant) {
    const FakeProcessor processor("Intel(R) Core(TM) i7-8557U CPU @ 1.70GHz");
    EXPECT_EQ(HardwareProfile(processor).appleSiliconVariant(), std::nullopt);
}

TEST(HardwareProfileTest, TheProcessorIsAskedOnceAndNotBeforeSomebodyWantsToKnow) {
    FakeProcessor processor("Apple M1");
    const HardwareProfile hardware(processor);
    EXPECT_EQ(processor.questions(), 0);
    EXPECT_TRUE(hardware.appleSiliconVariant().has_value());
    processor.brand = QStringLiteral("Apple M4");
    EXPECT_EQ(hardware.appleSiliconVariant(), (AppleSiliconVariant{1, Tier::base}));
    EXPECT_EQ(hardware.brandString(), QStringLiteral("Apple M1"));
    EXPECT_EQ(processor.questions(), 1);
}

}  // namespace
}  // namespace quietlark
