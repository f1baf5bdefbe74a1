#include "permissions/permissions.h"

#include <optional>
#include <thread>

#include <gtest/gtest.h>

#include "fakes/fake_privacy.h"
#include "fakes/fake_scheduler.h"
#include "fakes/fake_settings_panes.h"

namespace quietlark {
namespace {

using Panes = std::vector<SettingsPane>;
using Requests = std::vector<PrivacyGrant>;

class PermissionsTest : public ::testing::Test {
protected:
    void grantAll() {
        for (const auto grant :
             {PrivacyGrant::Microphone, PrivacyGrant::InputMonitoring, PrivacyGrant::Accessibility})
            privacy.grant(grant);
        localNetwork = true;
    }

    /// The user answers the system's question about the microphone.
    void answerMicrophone(bool granted) {
        privacy.answerMicrophone(granted);
        scheduler.runPosted();
    }

    FakePrivacy privacy;
    FakeSettingsPanes panes;
    FakeScheduler scheduler;
    bool localNetwork = false;
    int probeQuestions = 0;
    std::optional<Unavailable> whyNoLocalNetwork;
    Permissions permissions{privacy,
                            panes,
                            scheduler,
                            {.granted =
                                 [this] {
                                     ++probeQuestions;
                                     return localNetwork;
                                 },
                             .unavailable = [this] { return whyNoLocalNetwork; }}};
};

TEST_F(PermissionsTest, NothingIsGrantedAtFirst) {
    EXPECT_EQ(permissions.status(), Permissions::Status{});
    EXPECT_FALSE(permissions.status().allGranted());
}

TEST_F(PermissionsTest, EachGrantHasItsFieldInTheStatus) {
    privacy.grant(PrivacyGrant::Microphone);
    EXPECT_EQ(permissions.status(), (Permissions::Status{.microphone = true}));
    privacy.revoke(PrivacyGrant::Microphone);
    privacy.grant(PrivacyGrant::InputMonitoring);
    EXPECT_EQ(permissions.status(), (Permissions::Status{.inputMonitoring = true}));
    privacy.revoke(PrivacyGrant::InputMonitoring);
    privacy.grant(PrivacyGrant::Accessibility);
    EXPECT_EQ(permissions.status(), (Permissions::Status{.accessibility = true}));
    privacy.revoke(PrivacyGrant::Accessibility);
    localNetwork = true;
    EXPECT_EQ(permissions.status(), (Permissions::Status{.localNetwork = true}));
}

TEST_F(PermissionsTest, AllGrantsTogetherAreAllGranted) {
    grantAll();
    EXPECT_TRUE(permissions.status().allGranted());
    localNetwork = false;
    EXPECT_FALSE(permissions.status().allGranted());
}

TEST_F(PermissionsTest, TwoStatusReadsWithNoChangeInBetweenCompareEqual) {
    privacy.grant(PrivacyGrant::Microphone);
    EXPECT_EQ(permissions.status(), permissions.status());
}

TEST_F(PermissionsTest, TheFirstStatusReadStartsTheLocalNetworkProbe) {
    EXPECT_EQ(probeQuestions, 0);
    (void)permissions.status();
    EXPECT_EQ(probeQuestions, 1);
}

TEST_F(PermissionsTest, ReadingTheStatusAsksNobody) {
    (void)permissions.status();
    EXPECT_EQ(privacy.requests(), Requests{});
    EXPECT_EQ(panes.opened(), Panes{});
}

TEST_F(PermissionsTest, AllThatIsMissingIsRequestedInTheOrderOfTheFields) {
    const auto status = permissions.status();
    EXPECT_EQ(permissions.requestMissing(status), status);
    EXPECT_EQ(privacy.requests(), (Requests{PrivacyGrant::Microphone, PrivacyGrant::InputMonitoring,
                                            PrivacyGrant::Accessibility}));
}

TEST_F(PermissionsTest, OnlyWhatIsMissingIsRequested) {
    permissions.requestMissing({.microphone = true, .accessibility = true});
    EXPECT_EQ(privacy.requests(), Requests{PrivacyGrant::InputMonitoring});
}

TEST_F(PermissionsTest, WithEveryFieldTrueNothingIsRequestedYetTheProbeIsStarted) {
    permissions.requestMissing({true, true, true, true});
    EXPECT_EQ(privacy.requests(), Requests{});
    EXPECT_EQ(probeQuestions, 1);
}

TEST_F(PermissionsTest, RequestingWhatIsMissingOpensNoPaneEvenWhenAllIsRefused) {
    permissions.requestMissing({});
    answerMicrophone(false);
    EXPECT_EQ(panes.opened(), Panes{});
}

TEST_F(PermissionsTest, TheMicrophonesAnswerArrivesOnTheMainQueue) {
    std::optional<bool> answer;
    permissions.requestMic([&](bool granted) { answer = granted; });
    std::thread([this] { privacy.answerMicrophone(true); }).join();
    EXPECT_EQ(answer, std::nullopt);
    scheduler.runPosted();
    EXPECT_EQ(answer, true);
}

TEST_F(PermissionsTest, AMicrophoneThatTheUserRefusesOpensItsPane) {
    EXPECT_FALSE(permissions.status().microphone);
    permissions.grantMic();
    EXPECT_EQ(panes.opened(), Panes{});
    answerMicrophone(false);
    EXPECT_EQ(panes.opened(), Panes{SettingsPane::Microphone});
}

TEST_F(PermissionsTest, AMicrophoneThatTheUserAllowsOpensNoPane) {
    permissions.grantMic();
    answerMicrophone(true);
    EXPECT_EQ(panes.opened(), Panes{});
    EXPECT_TRUE(permissions.status().microphone);
}

TEST_F(PermissionsTest, AMicrophoneThatWasGrantedBeforeOpensNoPaneWhateverIsAnswered) {
    privacy.grant(PrivacyGrant::Microphone);
    permissions.grantMic();
    answerMicrophone(false);
    EXPECT_EQ(panes.opened(), Panes{});
}

TEST_F(PermissionsTest, RefusedInputMonitoringOpensItsPane) {
    permissions.grantInputMonitoring();
    EXPECT_EQ(privacy.requests(), Requests{PrivacyGrant::InputMonitoring});
    EXPECT_EQ(panes.opened(), Panes{SettingsPane::InputMonitoring});
}

TEST_F(PermissionsTest, RefusedAccessibilityOpensItsPane) {
    permissions.grantAccessibility();
    EXPECT_EQ(privacy.requests(), Requests{PrivacyGrant::Accessibility});
    EXPECT_EQ(panes.opened(), Panes{SettingsPane::Accessibility});
}

TEST_F(PermissionsTest, WhatIsGrantedOnRequestOpensNoPane) {
    grantAll();
    permissions.grantInputMonitoring();
    permissions.grantAccessibility();
    EXPECT_EQ(panes.opened(), Panes{});
}

TEST_F(PermissionsTest, TheLocalNetworkPaneOpensWithoutARequest) {
    permissions.grantLocalNetwork();
    EXPECT_EQ(panes.opened(), Panes{SettingsPane::LocalNetwork});
    EXPECT_EQ(privacy.requests(), Requests{});
}

TEST_F(PermissionsTest, EachMissingGrantIsExplainedByTheSystemsOwnSentence) {
    const auto explanations = permissions.explanations();
    EXPECT_EQ(explanations.microphone, FakePrivacy::reasonFor(PrivacyGrant::Microphone));
    EXPECT_EQ(explanations.inputMonitoring, FakePrivacy::reasonFor(PrivacyGrant::InputMonitoring));
    EXPECT_EQ(explanations.accessibility, FakePrivacy::reasonFor(PrivacyGrant::Accessibility));
    EXPECT_TRUE(explanations.localNetwork->endsWith(QLatin1Char('.')));
}

TEST_F(PermissionsTest, TheProbeKnowsBestWhatTheLocalNetworkLacks) {
    whyNoLocalNetwork = Unavailable{QStringLiteral("No bus: start dbus.")};
    EXPECT_EQ(permissions.explanations().localNetwork, QStringLiteral("No bus: start dbus."));
}

TEST_F(PermissionsTest, WhatIsGrantedNeedsNoExplanation) {
    grantAll();
    const auto explanations = permissions.explanations();
    EXPECT_EQ(explanations.microphone, std::nullopt);
    EXPECT_EQ(explanations.inputMonitoring, std::nullopt);
    EXPECT_EQ(explanations.accessibility, std::nullopt);
    EXPECT_EQ(explanations.localNetwork, std::nullopt);
}

}  // namespace
}  // namespace quietlark
