#include "platform/linux/xdg/linux_privacy.h"

#include <gtest/gtest.h>

#include "fakes/fake_audio_input.h"
#include "fakes/fake_key_event_source.h"
#include "fakes/fake_key_synthesizer.h"

namespace quietlark {
namespace {

class LinuxPrivacyTest : public ::testing::Test {
protected:
    LinuxPrivacy in(SessionKind session) { return {session, microphone, keyboard, keys}; }

    FakeAudioInput microphone;
    FakeKeyEventSource keyboard;
    FakeKeySynthesizer keys;
};

TEST_F(LinuxPrivacyTest, WhatCanBeDoneIsGranted) {
    auto privacy = in(SessionKind::X11);
    EXPECT_FALSE(privacy.missing(PrivacyGrant::Microphone));
    EXPECT_FALSE(privacy.missing(PrivacyGrant::InputMonitoring));
    EXPECT_FALSE(privacy.missing(PrivacyGrant::Accessibility));
    EXPECT_TRUE(privacy.requestInputMonitoring());
    EXPECT_TRUE(privacy.requestAccessibility());
}

TEST_F(LinuxPrivacyTest, WhatCannotBeDoneIsMissingForTheReasonThatTheAdapterGives) {
    microphone.format = {};
    keyboard.makeUnavailable(QStringLiteral("No keys."));
    keys.makeUnavailable(QStringLiteral("No typing."));
    auto privacy = in(SessionKind::X11);
    EXPECT_EQ(privacy.missing(PrivacyGrant::Microphone)->reason, microphone.unavailable()->reason);
    EXPECT_EQ(privacy.missing(PrivacyGrant::InputMonitoring)->reason, QStringLiteral("No keys."));
    EXPECT_EQ(privacy.missing(PrivacyGrant::Accessibility)->reason, QStringLiteral("No typing."));
    EXPECT_FALSE(privacy.requestInputMonitoring());
    EXPECT_FALSE(privacy.requestAccessibility());
}

TEST_F(LinuxPrivacyTest, AMicrophoneThatIsPluggedInIsGranted) {
    microphone.format = {};
    auto privacy = in(SessionKind::X11);
    EXPECT_TRUE(privacy.missing(PrivacyGrant::Microphone));
    microphone.format = {.sampleRateHz = 48000, .channels = 1};
    EXPECT_FALSE(privacy.missing(PrivacyGrant::Microphone));
}

TEST_F(LinuxPrivacyTest, AWaylandSessionGrantsNoKeysAndSaysSo) {
    auto privacy = in(SessionKind::Wayland);
    for (const auto grant : {PrivacyGrant::InputMonitoring, PrivacyGrant::Accessibility})
        EXPECT_TRUE(privacy.missing(grant)->reason.contains(QStringLiteral("Wayland")));
    EXPECT_FALSE(privacy.missing(PrivacyGrant::Microphone));
}

TEST_F(LinuxPrivacyTest, ARequestForTheMicrophoneIsAnsweredWithHowItStands) {
    auto privacy = in(SessionKind::X11);
    std::vector<bool> answers;
    privacy.requestMicrophone([&](bool granted) { answers.push_back(granted); });
    microphone.format = {};
    privacy.requestMicrophone([&](bool granted) { answers.push_back(granted); });
    EXPECT_EQ(answers, (std::vector{true, false}));
}

TEST(SessionKindTest, TheLoginManagerKnowsBest) {
    EXPECT_EQ(sessionKindOf("wayland", ""), SessionKind::Wayland);
    EXPECT_EQ(sessionKindOf("x11", "wayland-0"), SessionKind::X11);
    EXPECT_EQ(sessionKindOf("tty", "wayland-0"), SessionKind::Wayland);
    EXPECT_EQ(sessionKindOf("", ""), SessionKind::X11);
}

}  // namespace
}  // namespace quietlark
