#include <QCoreApplication>

#include "app/app_delegate_fixture.h"
#include "app/menus.h"

namespace quietlark {
namespace {

class LaunchTest : public AppDelegateFixture {
protected:
    static Config notOnboarded(Config config) {
        config.onboardingComplete = false;
        return config;
    }
};

TEST_F(LaunchTest, BeforeItNothingIsSeen) {
    delegate();
    settle();
    EXPECT_FALSE(statusItem.isShown());
    EXPECT_TRUE(statusItem.takeSymbols().isEmpty());
    EXPECT_EQ(keyboard.monitorCount(), 0u);
}

TEST_F(LaunchTest, ShowsTheStatusItemAndInstallsTheMenus) {
    launch();
    EXPECT_TRUE(statusItem.isShown());
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("bubble.left"));
    EXPECT_EQ(statusItem.menu(), statusMenu());
    EXPECT_EQ(windows.mainMenu(), buildMainMenu(QCoreApplication::applicationName()));
}

TEST_F(LaunchTest, WhereNoFolderIsMissingNothingIsWritten) {
    launch();
    EXPECT_EQ(defaults.string(QStringLiteral("foldersMissingAtLaunch")), std::nullopt);
}

TEST_F(LaunchTest, WithEverythingInPlaceNoWindowOpens) {
    launch();
    EXPECT_FALSE(windows.anyVisible());
    EXPECT_EQ(shell.activationPolicy(), ActivationPolicy::accessory);
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(LaunchTest, InstallsTheHotkeys) {
    launchWith(withSpace(manualRemote()));
    holdSpace();
    EXPECT_EQ(state().dictation().state().kind, Case::recording);
}

TEST_F(LaunchTest, AHotkeyThatDoesNotParseIsLeftOutSilently) {
    Config config = manualRemote();
    config.hotkey = QStringLiteral("ctrl+nonsense");
    launchWith(config);
    EXPECT_EQ(keyboard.monitorCount(), 0u);
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(LaunchTest, AnIncompleteOnboardingIsShownBeforeAllElse) {
    privacy.revoke(PrivacyGrant::Microphone);
    launchWith(notOnboarded(unconfigured()));
    EXPECT_TRUE(windows.isVisible(Window::onboarding));
    EXPECT_FALSE(windows.isVisible(Window::permissionsAlert));
    EXPECT_EQ(windows.serverTabShownCount(), 0);
}

TEST_F(LaunchTest, AMissingPermissionIsShownBeforeAMissingServer) {
    localNetworkGranted = false;
    launchWith(unconfigured());
    EXPECT_TRUE(windows.isVisible(Window::permissionsAlert));
    EXPECT_EQ(windows.serverTabShownCount(), 0);
}

TEST_F(LaunchTest, WithoutAServerTheServerPaneOpens) {
    launchWith(unconfigured());
    EXPECT_EQ(windows.serverTabShownCount(), 1);
}

TEST_F(LaunchTest, AServerThatNeedsApprovalOpensTheServerPane) {
    service.current = ServiceStatus::requiresApproval;
    launchWith(local());
    EXPECT_EQ(windows.serverTabShownCount(), 1);
}

TEST_F(LaunchTest, AForbiddenServerThatIsNotChosenOpensNothing) {
    service.current = ServiceStatus::requiresApproval;
    launch();
    EXPECT_FALSE(windows.anyVisible());
}

class ElsewhereTest : public LaunchTest {
protected:
    ElsewhereTest() { installation.path = QStringLiteral("/home/me/Applications/Quietlark"); }
};

TEST_F(ElsewhereTest, TheUserIsToldToMoveTheApplication) {
    launch();
    ASSERT_EQ(shell.alerts().size(), 1u);
    const Alert& alert = shell.alerts().front();
    EXPECT_EQ(alert.style, Alert::Style::informational);
    EXPECT_EQ(alert.title, QStringLiteral("Move Quietlark to Applications"));
    EXPECT_EQ(alert.text,
              QStringLiteral("Quietlark needs to live in your Applications folder so macOS can "
                             "start the background server reliably.\n\nQuit, drag Quietlark to "
                             "Applications, then open it from there."));
    EXPECT_EQ(alert.button, QStringLiteral("OK"));
}

TEST_F(ElsewhereTest, NeitherOnboardingNorServerComeUpThoughTheHotkeysWork) {
    installModel();
    launchWith(notOnboarded(withSpace(local())));
    EXPECT_FALSE(windows.anyVisible());
    EXPECT_TRUE(service.requests().isEmpty());
    holdSpace();
    EXPECT_EQ(state().dictation().state().kind, Case::recording);
}

TEST_F(ElsewhereTest, ThePermissionsAreNotPolled) {
    launch();
    privacy.revoke(PrivacyGrant::Microphone);
    tick();
    EXPECT_FALSE(windows.anyVisible());
}

TEST_F(ElsewhereTest, ARequestToRegisterTheServerShowsTheAlertAgain) {
    launch();
    notifications.post(notification::registerDaemonRequested);
    EXPECT_EQ(shell.alerts().size(), 2u);
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(ElsewhereTest, TheStatusItemStaysUsable) {
    launch();
    statusItem.choose(MenuAction::openPrefs);
    EXPECT_TRUE(windows.isVisible(Window::preferences));
}

TEST_F(LaunchTest, ASubfolderOfAnApplicationRootWillDo) {
    installation.path = QStringLiteral("/opt/tools/Quietlark");
    launch();
    EXPECT_TRUE(shell.alerts().empty());
}

}  // namespace
}  // namespace quietlark
