#include "screens/server_pane_model.h"

#include "screens/prefs_tab.h"
#include "state/app_state_fixture.h"

namespace quietlark {
namespace {

using Download = ModelDownloader::State::Case;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

LocalServerStand downloading(std::optional<double> progress) {
    return {.download = {Download::downloading}, .progress = progress};
}

LocalServerStand installed(ServiceStatus status, bool isPublished = false) {
    return {.modelIsInstalled = true, .download = {}, .status = status, .isPublished = isPublished};
}

TEST(LocalServerSummaryTest, ADownloadShowsItsPercentage) {
    EXPECT_EQ(localTitle(downloading(0.5)), text("Downloading model: 50%"));
    EXPECT_EQ(localTitle(downloading(0.004)), text("Downloading model: 0%"));
    EXPECT_EQ(localTitle(downloading(std::nullopt)), text("Downloading model…"));
}

TEST(LocalServerSummaryTest, WithoutAModelItIsTheDownloadThatCounts) {
    EXPECT_EQ(localTitle({.download = {Download::idle}}), text("Preparing model…"));
    EXPECT_EQ(localTitle({.download = {Download::ready}}), text("Preparing model…"));
    EXPECT_EQ(localTitle({.download = {Download::paused}}), text("Model download paused"));
    EXPECT_EQ(localTitle({.download = {Download::failed}}), text("Model download failed"));
}

TEST(LocalServerSummaryTest, WithTheModelItIsTheServiceThatCounts) {
    EXPECT_EQ(localTitle(installed(ServiceStatus::enabled, true)), text("Ready to transcribe"));
    EXPECT_EQ(localTitle(installed(ServiceStatus::enabled)), text("Starting server…"));
    EXPECT_EQ(localTitle(installed(ServiceStatus::requiresApproval)), text("Awaiting approval"));
    EXPECT_EQ(localTitle(installed(ServiceStatus::notRegistered)), text("Starting server…"));
    EXPECT_EQ(localTitle(installed(ServiceStatus::notFound)), text("Starting server…"));
    EXPECT_EQ(localTitle(installed(static_cast<ServiceStatus>(7))), QString());
}

TEST(LocalServerSummaryTest, TheAddressIsShownOfAServerThatRuns) {
    auto stand = installed(ServiceStatus::enabled, true);
    EXPECT_EQ(localDetails(stand), text("On this Mac"));
    stand.displayed = text("192.168.1.5:8000");
    EXPECT_EQ(localDetails(stand), text("On this Mac (192.168.1.5:8000)"));
    stand.modelIsInstalled = false;
    EXPECT_EQ(localDetails(stand), text("On this Mac"));
}

TEST(PrefsTabTest, TabsAreGeneralHotkeyAndServerInThisOrder) {
    QStringList names;
    for (const auto tab : allPrefsTabs)
        names << rawValue(tab) + u' ' + label(tab) + u' ' + symbol(tab);
    EXPECT_EQ(names.join(u'|'),
              text("general General gearshape|hotkey Hotkey keyboard|server Server server.rack"));
}

class ServerPaneModelTest : public AppStateFixture {
protected:
    ServerPaneModel& pane(const Config& config) {
        saved(config);
        m_pane = std::make_unique<ServerPaneModel>(state(), m_resolver, files.endpoint, scheduler);
        m_pane->appear();
        return *m_pane;
    }

    void serverAnswers() {
        network.respondTo(text("http://box:8080/api/v1/models"), 200,
                          "{\"data\":[{\"id\":\"whisper-1\"}]}");
    }

private:
    ServerResolver m_resolver{network};
    std::unique_ptr<ServerPaneModel> m_pane;
};

TEST_F(ServerPaneModelTest, ApprovalLeadsToStartingAndThenToReadyWithinASecond) {
    installModel();
    service.current = ServiceStatus::requiresApproval;
    auto& shown = pane(local());
    QStringList titles;
    QObject::connect(&shown, &ServerPaneModel::changed, [&] { titles << shown.hero().title; });
    EXPECT_TRUE(shown.showsFixUp());
    scheduler.advance(ServerPaneModel::pollInterval);
    service.current = ServiceStatus::enabled;
    scheduler.advance(ServerPaneModel::pollInterval);
    EXPECT_FALSE(shown.showsFixUp());
    serverPublishesItsEndpoint();
    scheduler.advance(ServerPaneModel::pollInterval);
    titles.removeDuplicates();
    EXPECT_EQ(titles.join(u'|'), text("Awaiting approval|Starting server…|Ready to transcribe"));
}

TEST_F(ServerPaneModelTest, ARemoteServerThatAnswersIsConnected) {
    serverAnswers();
    auto& shown = pane(manualRemote());
    EXPECT_EQ(shown.hero().title, text("Connecting…"));
    network.runAnswers();
    EXPECT_EQ(shown.hero().title, text("Connected to box:8080"));
    EXPECT_EQ(shown.hero().symbol, text("network"));
}

TEST_F(ServerPaneModelTest, ARemoteServerThatDoesNotAnswerIsAskedAgainFiveSecondsLater) {
    auto& shown = pane(manualRemote());
    network.runAnswers();
    EXPECT_EQ(shown.hero().title, text("Not connected"));
    EXPECT_EQ(shown.hero().subtitle, text("Attempting to reach box:8080"));
    serverAnswers();
    scheduler.advance(ServerPaneModel::probeInterval);
    network.runAnswers();
    EXPECT_EQ(shown.hero().title, text("Connected to box:8080"));
}

TEST_F(ServerPaneModelTest, AServerIsNamedAsItIsEvenWithWhatLooksLikeAPlaceholder) {
    auto& shown = pane(manualRemote(text("[fe80::1%2]")));
    EXPECT_EQ(shown.hero().subtitle, text("[fe80::1%2]:8080"));
}

TEST_F(ServerPaneModelTest, AnotherChoiceIsAskedAtOnce) {
    auto& shown = pane(manualRemote());
    network.runAnswers();
    state().setConfig(manualRemote(text("other")));
    EXPECT_EQ(shown.hero().title, text("Connecting…"));
    EXPECT_EQ(network.requests().back().url.host(), text("other"));
}

TEST_F(ServerPaneModelTest, NothingIsAskedWhileThePaneIsHidden) {
    auto& shown = pane(manualRemote());
    network.runAnswers();
    const auto asked = network.requests().size();
    shown.disappear();
    scheduler.advance(ServerPaneModel::probeInterval * 3);
    EXPECT_EQ(network.requests().size(), asked);
}

TEST_F(ServerPaneModelTest, WhereNoServerIsChosenTheChoiceIsShown) {
    EXPECT_TRUE(pane(unconfigured()).isEditing());
}

TEST_F(ServerPaneModelTest, TheChoiceEndsWhenThePaneDisappears) {
    auto& shown = pane(local());
    shown.setEditing(true);
    shown.disappear();
    EXPECT_FALSE(shown.isEditing());
}

TEST_F(ServerPaneModelTest, TheChoiceEndsWithOneMadeElsewhere) {
    auto& shown = pane(unconfigured());
    state().setConfig(local());
    EXPECT_FALSE(shown.isEditing());
}

TEST_F(ServerPaneModelTest, WhereNoServerIsChosenAnyMoreTheChoiceBeginsAnew) {
    auto& shown = pane(local());
    shown.setEditing(true);
    QList<bool> editing;
    QObject::connect(&shown, &ServerPaneModel::changed, [&] { editing << shown.isEditing(); });
    state().setConfig(unconfigured());
    EXPECT_TRUE(editing.contains(false));
    EXPECT_TRUE(shown.isEditing());
}

TEST_F(ServerPaneModelTest, ApprovingShowsTheSettingsForIt) {
    pane(local()).approve();
    EXPECT_EQ(panes.opened(), std::vector{SettingsPane::LoginItems});
}

}  // namespace
}  // namespace quietlark
