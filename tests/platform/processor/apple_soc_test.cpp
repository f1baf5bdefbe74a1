#include "platform/linux/processor/apple_soc.h"

#include <string_view>

#include <gtest/gtest.h>

#include "servers/apple_silicon_variant.h"

namespace quietlark {
namespace {

using namespace std::string_view_literals;

/// A "compatible" property, its NULs included.
QByteArray compatible(std::string_view bytes) {
    return QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

TEST(AppleSocTest, TheChipStandsBetweenTheMachineAndTheFamily) {
    EXPECT_EQ(appleSocBrand(compatible("apple,j414s\0apple,t6020\0apple,arm-platform\0"sv)),
              QStringLiteral("Apple M2 Pro"));
}

TEST(AppleSocTest, ThePlainChipHasNoTierInItsName) {
    EXPECT_EQ(appleSocBrand(compatible("apple,j313\0apple,t8103\0apple,arm-platform\0"sv)),
              QStringLiteral("Apple M1"));
}

TEST(AppleSocTest, ATelephonesChipIsNone) {
    EXPECT_EQ(appleSocBrand(compatible("apple,n71\0apple,s8000\0apple,arm-platform\0"sv)),
              QString());
}

TEST(AppleSocTest, ALongerIdentifierIsAnother) {
    EXPECT_EQ(appleSocBrand(compatible("apple,t60200\0xapple,t6020\0"sv)), QString());
}

TEST(AppleSocTest, AnotherMakersBoardIsNone) {
    EXPECT_EQ(appleSocBrand(compatible("raspberrypi,4-model-b\0brcm,bcm2711\0"sv)), QString());
}

TEST(AppleSocTest, NothingIsNone) {
    EXPECT_EQ(appleSocBrand({}), QString());
}

TEST(AppleSocTest, EveryChipIsNamedInTheFormThatIsUnderstood) {
    for (const char* identifier :
         {"t8103", "t6000", "t6001", "t6002", "t8112", "t6020", "t6021", "t6022", "t8122", "t6030",
          "t6031", "t6034", "t6032", "t8132", "t6040", "t6041"}) {
        const QString brand = appleSocBrand(QByteArray("apple,") + identifier);
        const auto variant = AppleSiliconVariant::parse(brand);
        ASSERT_TRUE(variant.has_value()) << identifier;
        EXPECT_EQ(variant->displayName(), brand);
        EXPECT_TRUE(variant->estimatedRTF().has_value()) << identifier;
    }
}

}  // namespace
}  // namespace quietlark
