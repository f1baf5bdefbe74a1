#include "servers/apple_silicon_variant.h"

#include <gtest/gtest.h>

namespace quietlark {

void PrintTo(const AppleSiliconVariant& variant, std::ostream* out) {
    *out << variant.displayName().toStdString();
}

namespace {

using Variant = AppleSiliconVariant;
using Tier = Variant::Tier;

std::optional<Variant> parse(const char* brand) {
    return Variant::parse(QString::fromUtf8(brand));
}

std::optional<double> estimate(std::int64_t generation, Tier tier) {
    return Variant{generation, tier}.estimatedRTF();
}

TEST(AppleSiliconVariantTest, GenerationAndTierAreRead) {
    EXPECT_EQ(parse("Apple M1"), (Variant{1, Tier::base}));
    EXPECT_EQ(parse("Apple M2 Pro"), (Variant{2, Tier::pro}));
    EXPECT_EQ(parse("APPLE M3 MAX"), (Variant{3, Tier::max}));
    EXPECT_EQ(parse("Apple M4 Ultra"), (Variant{4, Tier::ultra}));
}

TEST(AppleSiliconVariantTest, AppleM12IsGeneration12WithoutAnEstimate) {
    ASSERT_EQ(parse("apple m12"), (Variant{12, Tier::base}));
    EXPECT_EQ(parse("apple m12")->estimatedRTF(), std::nullopt);
}

TEST(AppleSiliconVariantTest, TwoSpacesBeforeTheTierAreTrimmed) {
    EXPECT_EQ(parse("Apple M2  Pro"), (Variant{2, Tier::pro}));
    EXPECT_EQ(parse("Apple M2\tPro \t"), (Variant{2, Tier::pro}));
}

TEST(AppleSiliconVariantTest, TheTierMayFollowAtOnce) {
    EXPECT_EQ(parse("Apple M2Pro"), (Variant{2, Tier::pro}));
}

TEST(AppleSiliconVariantTest, ANewlineIsNotTrimmedHere) {
    EXPECT_EQ(parse("Apple M2 Pro\n"), std::nullopt);
    EXPECT_EQ(parse(" Apple M2"), std::nullopt);
}

TEST(AppleSiliconVariantTest, AnotherMakersBrandGivesNoVariant) {
    EXPECT_EQ(parse("Intel(R) Core(TM) i7-8557U CPU @ 1.70GHz"), std::nullopt);
    EXPECT_EQ(parse("AMD EPYC"), std::nullopt);
    EXPECT_EQ(parse("Apple A14"), std::nullopt);
    EXPECT_EQ(parse(""), std::nullopt);
}

TEST(AppleSiliconVariantTest, ExtraWordsGiveNoVariant) {
    EXPECT_EQ(parse("Apple M2 Pro Edition"), std::nullopt);
    EXPECT_EQ(parse("Apple M2 Pro (10 cores)"), std::nullopt);
    EXPECT_EQ(parse("Apple M2 base"), std::nullopt);
}

TEST(AppleSiliconVariantTest, AGenerationIsAtLeastOne) {
    EXPECT_EQ(parse("Apple M0"), std::nullopt);
    EXPECT_EQ(parse("Apple M-1"), std::nullopt);
    EXPECT_EQ(parse("Apple M"), std::nullopt);
    EXPECT_EQ(parse("Apple M Pro"), std::nullopt);
    EXPECT_EQ(parse("Apple M007"), (Variant{7, Tier::base}));
}

TEST(AppleSiliconVariantTest, AGenerationThatIsNoIntegerGivesNoVariant) {
    EXPECT_EQ(parse("Apple M99999999999999999999"), std::nullopt);
    EXPECT_EQ(parse("Apple M½"), std::nullopt);
    EXPECT_EQ(parse("Apple M2½"), std::nullopt);
    EXPECT_EQ(parse("Apple M٢"), std::nullopt);
}

TEST(AppleSiliconVariantTest, TheDisplayNameIsTheBrand) {
    EXPECT_EQ((Variant{1, Tier::base}.displayName()), QStringLiteral("Apple M1"));
    EXPECT_EQ((Variant{2, Tier::pro}.displayName()), QStringLiteral("Apple M2 Pro"));
    EXPECT_EQ((Variant{3, Tier::max}.displayName()), QStringLiteral("Apple M3 Max"));
    EXPECT_EQ((Variant{14, Tier::ultra}.displayName()), QStringLiteral("Apple M14 Ultra"));
}

TEST(AppleSiliconVariantTest, EveryChipUpToTheFourthGenerationHasItsEstimate) {
    const double expected[4][4] = {{7.0, 10.0, 13.0, 16.0},
                                   {9.0, 13.0, 16.0, 20.0},
                                   {12.0, 15.0, 20.0, 25.0},
                                   {14.0, 18.0, 22.0, 28.0}};
    for (int generation = 1; generation <= 4; ++generation) {
        const auto& row = expected[generation - 1];
        EXPECT_EQ(estimate(generation, Tier::base), row[0]);
        EXPECT_EQ(estimate(generation, Tier::pro), row[1]);
        EXPECT_EQ(estimate(generation, Tier::max), row[2]);
        EXPECT_EQ(estimate(generation, Tier::ultra), row[3]);
    }
}

TEST(AppleSiliconVariantTest, AFutureChipHasNoEstimate) {
    EXPECT_EQ(estimate(5, Tier::base), std::nullopt);
    EXPECT_EQ(estimate(0, Tier::ultra), std::nullopt);
}

TEST(AppleSiliconVariantTest, TheTiersHaveTheirNames) {
    EXPECT_EQ(rawValue(Tier::base), QStringLiteral("base"));
    EXPECT_EQ(rawValue(Tier::pro), QStringLiteral("pro"));
    EXPECT_EQ(rawValue(Tier::max), QStringLiteral("max"));
    EXPECT_EQ(rawValue(Tier::ultra), QStringLiteral("ultra"));
}

}  // namespace
}  // namespace quietlark
