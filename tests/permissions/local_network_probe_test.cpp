#include "permissions/local_network_probe.h"

#include <vector>

#include <gtest/gtest.h>

#include "fakes/fake_scheduler.h"
#include "fakes/fake_service_browser.h"

namespace quietlark {
namespace {

using Kind = BrowseState::Kind;

class LocalNetworkProbeTest : public testing::Test {
protected:
    LocalNetworkProbeTest() {
        QObject::connect(&probe, &LocalNetworkProbe::grantedChanged,
                         [this](bool granted) { changes.push_back(granted); });
    }

    void browseGoes(const std::vector<Kind>& states) {
        for (const Kind state : states)
            network.reportState(state);
    }

    FakeScheduler scheduler;
    FakeServiceBrowser network{scheduler};
    LocalNetworkProbe probe{network};
    std::vector<bool> changes;
};

TEST_F(LocalNetworkProbeTest, BrowsesForTranscriptionServersInNoParticularDomain) {
    EXPECT_EQ(network.browseCount(), 1U);
    EXPECT_EQ(network.lastQuery().type, QStringLiteral("_whisper._tcp."));
    EXPECT_TRUE(network.lastQuery().domain.isEmpty());
}

TEST_F(LocalNetworkProbeTest, NothingIsGrantedBeforeTheFirstReady) {
    EXPECT_FALSE(probe.granted());
    browseGoes({Kind::Setup});
    EXPECT_FALSE(probe.granted());
}

TEST_F(LocalNetworkProbeTest, SetupThenWaitingIsNotGranted) {
    browseGoes({Kind::Setup, Kind::Waiting});
    EXPECT_FALSE(probe.granted());
    EXPECT_TRUE(changes.empty());
}

TEST_F(LocalNetworkProbeTest, WaitingThenReadyIsGranted) {
    browseGoes({Kind::Waiting, Kind::Ready});
    EXPECT_TRUE(probe.granted());
    EXPECT_EQ(changes, std::vector<bool>{true});
}

TEST_F(LocalNetworkProbeTest, ReadyThenFailedIsNoLongerGranted) {
    browseGoes({Kind::Ready, Kind::Failed});
    EXPECT_FALSE(probe.granted());
    EXPECT_EQ(changes, (std::vector<bool>{true, false}));
}

TEST_F(LocalNetworkProbeTest, ReadyThenWaitingOrCancelledIsNoLongerGranted) {
    for (const Kind end : {Kind::Waiting, Kind::Cancelled}) {
        browseGoes({Kind::Ready, end});
        EXPECT_FALSE(probe.granted());
    }
}

TEST_F(LocalNetworkProbeTest, SetupLeavesTheGrantAsItWas) {
    browseGoes({Kind::Ready, Kind::Setup});
    EXPECT_TRUE(probe.granted());
}

TEST_F(LocalNetworkProbeTest, TheSameAgainIsNoChange) {
    browseGoes({Kind::Ready, Kind::Ready});
    EXPECT_EQ(changes, std::vector<bool>{true});
}

TEST_F(LocalNetworkProbeTest, SaysWhyNothingIsGranted) {
    network.reportState({Kind::Waiting, QStringLiteral("Start it.")});
    ASSERT_TRUE(probe.unavailable());
    EXPECT_EQ(probe.unavailable()->reason, QStringLiteral("Start it."));
    browseGoes({Kind::Ready});
    EXPECT_FALSE(probe.unavailable());
}

TEST_F(LocalNetworkProbeTest, ServersNearbyDoNotMatter) {
    scheduler.runPosted();
    network.publish(QStringLiteral("Office"), {QStringLiteral("box.local"), 8001, {}});
    EXPECT_TRUE(probe.granted());
    EXPECT_EQ(changes, std::vector<bool>{true});
}

}  // namespace
}  // namespace quietlark
