#include "servers/server_copy.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

const ServerRecommendation local = RecommendLocal{};
const ServerRecommendation remote = RecommendRemote{};
const ServerRecommendation list = ShowList{};

std::string localCard(const ServerRecommendation& recommendation, std::size_t remotes,
                      bool modelIsInstalled = true) {
    return ServerCopy::localCard(recommendation, remotes, modelIsInstalled).toStdString();
}

std::string networkCard(const ServerRecommendation& recommendation, std::size_t remotes,
                        bool initialScanIsDone = true) {
    return ServerCopy::networkCard(recommendation, remotes, initialScanIsDone).toStdString();
}

TEST(ServerCopyTest, TheLocalCardComparesThisComputerWithTheNetwork) {
    EXPECT_EQ(localCard(local, 1), "Faster than anything on your network.");
    EXPECT_EQ(localCard(remote, 1), "Slower than a server on your network.");
    EXPECT_EQ(localCard(local, 0), "Transcribe on this Mac.");
    EXPECT_EQ(localCard(list, 2), "Transcribe on this Mac.");
}

TEST(ServerCopyTest, WithTheModelInstalledTheLocalCardEndsInAPlainFullStop) {
    EXPECT_EQ(localCard(local, 0, true), "Transcribe on this Mac.");
}

TEST(ServerCopyTest, WithoutTheModelTheLocalCardTellsOfTheDownload) {
    EXPECT_EQ(localCard(local, 0, false), "Transcribe on this Mac. 1.6 GB model download.");
    EXPECT_EQ(localCard(local, 3, false),
              "Faster than anything on your network. 1.6 GB model download.");
    EXPECT_EQ(localCard(remote, 1, false),
              "Slower than a server on your network. 1.6 GB model download.");
}

TEST(ServerCopyTest, WithoutServersTheNetworkCardLooksUntilTheInitialScanIsDone) {
    EXPECT_EQ(networkCard(local, 0, false), "Looking…");
    EXPECT_EQ(networkCard(local, 0, true), "None found. Enter an address manually.");
}

TEST(ServerCopyTest, SlowerServersAreCounted) {
    EXPECT_EQ(networkCard(local, 1), "1 server, slower than this Mac.");
    EXPECT_EQ(networkCard(local, 3), "3 servers, all slower than this Mac.");
}

TEST(ServerCopyTest, OtherServersAreCounted) {
    EXPECT_EQ(networkCard(remote, 1), "1 server found.");
    EXPECT_EQ(networkCard(list, 1), "1 server found.");
    EXPECT_EQ(networkCard(remote, 2), "2 servers found.");
    EXPECT_EQ(networkCard(list, 12), "12 servers found.");
}

TEST(ServerCopyTest, WhatIsFoundIsShownBeforeTheInitialScanIsDone) {
    EXPECT_EQ(networkCard(remote, 1, false), "1 server found.");
}

TEST(ServerCopyTest, TheHintsHaveTheirWords) {
    EXPECT_EQ(ServerCopy::hint(SpeedHint::faster), QStringLiteral("Faster than this Mac"));
    EXPECT_EQ(ServerCopy::hint(SpeedHint::slower), QStringLiteral("Slower than this Mac"));
}

}  // namespace
}  // namespace quietlark
