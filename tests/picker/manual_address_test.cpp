#include "picker/manual_address.h"

#include <gtest/gtest.h>

namespace quietlark {

void PrintTo(const ManualAddress& address, std::ostream* out) {
    *out << address.baseAddress().toStdString();
}

namespace {

std::optional<ManualAddress> parse(const char* text) {
    return ManualAddress::parse(QString::fromUtf8(text));
}

ManualAddress address(const char* scheme, const char* host, std::int64_t port) {
    return {QString::fromUtf8(scheme), QString::fromUtf8(host), port};
}

std::string typed(const char* scheme, const char* host, std::int64_t port) {
    return typedForm({QString::fromUtf8(host), port, QString::fromUtf8(scheme)}).toStdString();
}

TEST(ManualAddressTest, AHostAndAPortAreReachedOverHttp) {
    EXPECT_EQ(parse("gpu-box:8001"), address("http", "gpu-box", 8001));
    EXPECT_EQ(parse(" \t192.168.1.20:8001\n"), address("http", "192.168.1.20", 8001));
}

TEST(ManualAddressTest, TheSchemeIsLowerCasedAndTheHostIsNot) {
    EXPECT_EQ(parse("HTTPS://Box.local:443/v1/"), address("https", "Box.local", 443));
    EXPECT_EQ(parse("ftp://box:21"), address("ftp", "box", 21));
}

TEST(ManualAddressTest, AnEmptySchemeIsHttp) {
    EXPECT_EQ(parse("://box:80"), address("http", "box", 80));
    EXPECT_EQ(parse("  ://box:80"), address("http", "box", 80));
}

TEST(ManualAddressTest, OnlyTheFirstSchemeMarkCounts) {
    EXPECT_EQ(parse("http://box:80/x://y:9"), address("http", "box", 80));
    EXPECT_EQ(parse("http://://box:80"), std::nullopt);
}

TEST(ManualAddressTest, PathQueryAndFragmentAreDropped) {
    EXPECT_EQ(parse("box:8001/inference"), address("http", "box", 8001));
    EXPECT_EQ(parse("box:8001?a=b/c:1"), address("http", "box", 8001));
    EXPECT_EQ(parse("box:8001#part"), address("http", "box", 8001));
}

TEST(ManualAddressTest, BlanksAroundThePartsAreTrimmed) {
    EXPECT_EQ(parse("https :// box : 443 / v1"), address("https", "box", 443));
}

TEST(ManualAddressTest, APortIsAlwaysNeeded) {
    EXPECT_EQ(parse("gpu-box"), std::nullopt);
    EXPECT_EQ(parse("https://box.local"), std::nullopt);
    EXPECT_EQ(parse("gpu-box:"), std::nullopt);
    EXPECT_EQ(parse("gpu-box: "), std::nullopt);
    EXPECT_EQ(parse(""), std::nullopt);
}

TEST(ManualAddressTest, AHostIsAlwaysNeeded) {
    EXPECT_EQ(parse(":8001"), std::nullopt);
    EXPECT_EQ(parse("http:// :8001"), std::nullopt);
    EXPECT_EQ(parse("/box:8001"), std::nullopt);
}

TEST(ManualAddressTest, APortIsFrom1To65535) {
    EXPECT_EQ(parse("gpu-box:0"), std::nullopt);
    EXPECT_EQ(parse("gpu-box:1"), address("http", "gpu-box", 1));
    EXPECT_EQ(parse("gpu-box:65535"), address("http", "gpu-box", 65535));
    EXPECT_EQ(parse("gpu-box:65536"), std::nullopt);
    EXPECT_EQ(parse("gpu-box:70000"), std::nullopt);
    EXPECT_EQ(parse("gpu-box:99999999999999999999"), std::nullopt);
}

TEST(ManualAddressTest, APortMayHaveASignButNothingElse) {
    EXPECT_EQ(parse("box:+8001"), address("http", "box", 8001));
    EXPECT_EQ(parse("box:08001"), address("http", "box", 8001));
    for (const char* text : {"box:-8001", "box:++8001", "box:+-1", "box:+", "box:80a", "box:8,001",
                             "box:80 01", "box:0x50", "box:8e3", "box:٨٠"})
        EXPECT_EQ(parse(text), std::nullopt) << text;
}

TEST(ManualAddressTest, AnIPv6AddressKeepsItsBrackets) {
    EXPECT_EQ(parse("[fe80::1]:9000"), address("http", "[fe80::1]", 9000));
}

TEST(ManualAddressTest, TheBaseAddressHasAllThreeParts) {
    EXPECT_EQ(address("https", "box", 443).baseAddress(), QStringLiteral("https://box:443"));
}

TEST(ManualAddressTest, HttpIsNotTypedAndAnyOtherSchemeIs) {
    EXPECT_EQ(typed("http", "box", 8001), "box:8001");
    EXPECT_EQ(typed("", "box", 8001), "box:8001");
    EXPECT_EQ(typed("https", "box", 443), "https://box:443");
}

}  // namespace
}  // namespace quietlark
