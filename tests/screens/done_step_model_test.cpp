#include "screens/done_step_model.h"

#include "fakes/fake_processor.h"
#include "state/app_state_fixture.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using Readiness = DoneReadiness::Case;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class DoneStepModelTest : public AppStateFixture {
protected:
    DoneStepModel& step(const Config& config) {
        saved(config);
        m_step = std::make_unique<DoneStepModel>(state(), m_resolver, files.endpoint, m_hardware,
                                                 scheduler);
        m_step->appear();
        return *m_step;
    }

    void serverAnswersAt(const char* base) {
        network.respondTo(text(base) + text("/api/v1/models"), 200,
                          "{\"data\":[{\"id\":\"whisper-1\"}]}");
    }

    void nextProbe() {
        scheduler.advance(DoneStepModel::probeInterval);
        network.runAnswers();
    }

private:
    FakeProcessor m_processor{"Apple M1 Pro"};
    HardwareProfile m_hardware{m_processor};
    ServerResolver m_resolver{network};
    std::unique_ptr<DoneStepModel> m_step;
};

TEST_F(DoneStepModelTest, WithoutAServerItIsDeferredAtOnceAndMayFinish) {
    auto& shown = step(unconfigured());
    EXPECT_EQ(shown.readiness().kind, Readiness::deferred);
    EXPECT_TRUE(shown.readiness().mayFinish());
    EXPECT_EQ(shown.content().title, text("Come back when you're ready"));
}

TEST_F(DoneStepModelTest, AServerAwaitingApprovalIsReadySoonAfterApproval) {
    installModel();
    service.current = ServiceStatus::requiresApproval;
    auto& shown = step(local());
    EXPECT_EQ(shown.content().title, text("Approve the server"));
    service.current = ServiceStatus::enabled;
    nextProbe();
    EXPECT_EQ(shown.readiness(),
              (DoneReadiness{Readiness::connecting, text("Starting transcription server…")}));
    serverPublishesItsEndpoint();
    serverAnswersAt("http://127.0.0.1:9000");
    nextProbe();
    EXPECT_EQ(shown.readiness().kind, Readiness::ready);
}

TEST_F(DoneStepModelTest, AManualServerWithoutASchemeIsAskedOverHttp) {
    Config config = manualRemote();
    config.serverMode = ManualRemote{text("box"), 8080, {}};
    step(config);
    EXPECT_EQ(network.requests().front().url.scheme(), text("http"));
    EXPECT_EQ(network.requests().front().url.authority(), text("box:8080"));
}

TEST_F(DoneStepModelTest, AManualServerThatDoesNotAnswerIsNamed) {
    auto& shown = step(manualRemote());
    EXPECT_EQ(shown.readiness().kind, Readiness::checking);
    network.runAnswers();
    EXPECT_EQ(shown.readiness(),
              (DoneReadiness{Readiness::failed, text("box:8080 isn't responding.")}));
    EXPECT_EQ(shown.content().hint, text("Press Back to pick a different server."));
}

TEST_F(DoneStepModelTest, AServerIsNamedAsItIsEvenWithWhatLooksLikeAPlaceholder) {
    Config config = unconfigured();
    config.serverMode = ManualRemote{text("[fe80::1%2]"), 8080, text("http")};
    auto& shown = step(config);
    // No address of this kind can be asked.
    ASSERT_TRUE(waitUntil([&] { return shown.readiness().kind == Readiness::failed; }));
    EXPECT_EQ(shown.readiness().message, text("[fe80::1%2]:8080 isn't responding."));
}

TEST_F(DoneStepModelTest, ADiscoveredServerThatDoesNotAnswerMayBeElsewhere) {
    Config config = unconfigured();
    config.serverMode = DiscoveredRemote{text("Box"), text("box.local"), 8001};
    auto& shown = step(config);
    network.runAnswers();
    EXPECT_EQ(
        shown.readiness().message,
        text("box.local:8001 isn't responding. It may be offline or on a different network."));
}

TEST_F(DoneStepModelTest, AServerThatFailedIsAskedAgainUntilItAnswers) {
    auto& shown = step(manualRemote());
    network.runAnswers();
    serverAnswersAt("http://box:8080");
    nextProbe();
    EXPECT_EQ(shown.readiness().kind, Readiness::ready);
    const auto asked = network.requests().size();
    nextProbe();
    EXPECT_EQ(network.requests().size(), asked);
}

TEST_F(DoneStepModelTest, WithoutTheModelItIsDownloading) {
    auto& shown = step(local());
    EXPECT_EQ(shown.readiness().kind, Readiness::downloading);
    EXPECT_TRUE(shown.content().showsDownload);
    EXPECT_FALSE(shown.readiness().mayFinish());
}

TEST_F(DoneStepModelTest, AServerThatIsNotRegisteredYetIsStarting) {
    installModel();
    for (const auto status : {ServiceStatus::notRegistered, ServiceStatus::notFound}) {
        service.current = status;
        EXPECT_EQ(step(local()).readiness().kind, Readiness::connecting);
    }
}

TEST_F(DoneStepModelTest, NothingIsAskedOnceTheStepIsGone) {
    auto& shown = step(manualRemote());
    shown.disappear();
    network.runAnswers();
    nextProbe();
    EXPECT_EQ(shown.readiness().kind, Readiness::checking);
}

TEST_F(DoneStepModelTest, WhatIsKnownOfOneServerIsForgottenForAnother) {
    serverAnswersAt("http://box:8080");
    auto& shown = step(manualRemote());
    network.runAnswers();
    shown.disappear();
    state().setConfig(manualRemote(text("other")));
    shown.appear();
    EXPECT_EQ(shown.readiness().kind, Readiness::checking);
}

TEST_F(DoneStepModelTest, AReadyServerInvitesToATrial) {
    Config config = manualRemote();
    config.hotkey = text("alt+space");
    serverAnswersAt("http://box:8080");
    auto& shown = step(config);
    network.runAnswers();
    EXPECT_EQ(shown.content().text,
              text("Try it out! Click the box, then hold ⌥+Space and speak."));
    EXPECT_TRUE(shown.content().offersTrial);
}

TEST_F(DoneStepModelTest, TheSpeedOfTheLocalServerIsReadEverySecond) {
    installModel();
    service.current = ServiceStatus::enabled;
    serverPublishesItsEndpoint("rtf=0.5\n");
    serverAnswersAt("http://127.0.0.1:9000");
    auto& shown = step(local());
    network.runAnswers();
    EXPECT_EQ(shown.content().note, QString());
    scheduler.advance(DoneStepModel::rtfInterval);
    EXPECT_TRUE(shown.content().note.contains(text("2.0x")));
}

TEST_F(DoneStepModelTest, TheSettingsForTheApprovalCanBeShown) {
    step(local()).openSettings();
    EXPECT_EQ(panes.opened(), std::vector{SettingsPane::LoginItems});
}

}  // namespace
}  // namespace quietlark
