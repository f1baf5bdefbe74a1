#include "app/app_delegate_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

class ReactionsTest : public AppDelegateFixture {};

// Permissions

TEST_F(ReactionsTest, GrantingInputMonitoringInstallsTheHotkeysWithinATick) {
    privacy.revoke(PrivacyGrant::InputMonitoring);
    keyboard.makeUnavailable(QStringLiteral("Keys cannot be seen."));
    launchWith(withSpace(manualRemote()));
    holdSpace();
    letGoOfSpace();
    ASSERT_EQ(state().dictation().state().kind, Case::idle);
    keyboard.makeAvailable();
    privacy.grant(PrivacyGrant::InputMonitoring);
    tick();
    holdSpace();
    EXPECT_EQ(state().dictation().state().kind, Case::recording);
}

TEST_F(ReactionsTest, AHeldHotkeyOutlastsTheTicks) {
    launchWith(withSpace(manualRemote()));
    holdSpace();
    tick();
    EXPECT_EQ(state().dictation().state().kind, Case::recording);
}

TEST_F(ReactionsTest, RevokingAnyPermissionShowsTheAlertOnce) {
    launch();
    privacy.revoke(PrivacyGrant::Accessibility);
    tick();
    EXPECT_EQ(windows.shownCount(Window::permissionsAlert), 1);
    windows.close(Window::permissionsAlert);
    tick();
    tick();
    EXPECT_EQ(windows.shownCount(Window::permissionsAlert), 1);
}

TEST_F(ReactionsTest, LosingThePermissionsAgainShowsTheAlertAgain) {
    launch();
    localNetworkGranted = false;
    tick();
    localNetworkGranted = true;
    tick();
    localNetworkGranted = false;
    tick();
    EXPECT_EQ(windows.shownCount(Window::permissionsAlert), 2);
}

TEST_F(ReactionsTest, ARevokedPermissionShowsTheTriangleEvenWhileTheServerStarts) {
    installModel();
    service.current = ServiceStatus::enabled;
    launchWith(local());
    privacy.revoke(PrivacyGrant::Microphone);
    tick();
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("exclamationmark.triangle"));
}

TEST_F(ReactionsTest, TheAlertClosesOnceEverythingIsGranted) {
    privacy.revoke(PrivacyGrant::Microphone);
    launch();
    ASSERT_TRUE(windows.isVisible(Window::permissionsAlert));
    windows.findAllPermissionsGranted();
    EXPECT_FALSE(windows.anyVisible());
    EXPECT_EQ(shell.activationPolicy(), ActivationPolicy::accessory);
}

// Dictation and the status item

TEST_F(ReactionsTest, TheIconFollowsDictation) {
    launchWith(withSpace(manualRemote()));
    holdSpace();
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("bubble.left.fill"));
    microphone.hearTone(4096);
    letGoOfSpace();
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("waveform.path"));
    scheduler.advance(StatusPresenter::frameInterval);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("waveform"));
    scheduler.advance(StatusPresenter::frameInterval);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("waveform.path.ecg"));
}

TEST_F(ReactionsTest, TheAnimationEndsWithTheTranscriptionAndBeginsAnewWithTheNext) {
    launch();
    transcribe();
    scheduler.advance(2 * StatusPresenter::frameInterval);
    network.runAnswers();
    settle();
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("exclamationmark.triangle"));
    statusItem.takeSymbols();
    scheduler.advance(2s);
    EXPECT_TRUE(statusItem.takeSymbols().isEmpty());
    transcribe();
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("waveform.path"));
}

TEST_F(ReactionsTest, OpeningTheMenuRefreshesIconAndTimers) {
    installModel();
    launchWith(local());
    service.current = ServiceStatus::enabled;
    EXPECT_EQ(statusItem.open().items.size(), 3u);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("ellipsis.circle"));
    scheduler.advance(3 * StatusPresenter::frameInterval);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("ellipsis.circle.fill"));
}

TEST_F(ReactionsTest, TheMenusOpenPreferencesAndQuit) {
    launch();
    windows.choose(MenuAction::openPrefs);
    EXPECT_TRUE(windows.isVisible(Window::preferences));
    windows.choose(MenuAction::copy);
    EXPECT_FALSE(shell.isTerminated());
    statusItem.choose(MenuAction::terminate);
    EXPECT_TRUE(shell.isTerminated());
}

// Onboarding

class OnboardingTest : public ReactionsTest {
protected:
    OnboardingTest() {
        Config config = manualRemote();
        config.onboardingComplete = false;
        saved(config);
    }
};

TEST_F(OnboardingTest, FinishingItClosesItsWindow) {
    launch();
    windows.finishOnboarding();
    EXPECT_FALSE(windows.anyVisible());
    EXPECT_EQ(shell.activationPolicy(), ActivationPolicy::accessory);
}

TEST_F(OnboardingTest, FinishingItAsksForEveryPermissionThatIsStillMissing) {
    privacy.revoke(PrivacyGrant::Accessibility);
    privacy.revoke(PrivacyGrant::Microphone);
    launch();
    EXPECT_TRUE(privacy.requests().empty());
    windows.finishOnboarding();
    EXPECT_EQ(privacy.requests(),
              (std::vector{PrivacyGrant::Microphone, PrivacyGrant::Accessibility}));
}

TEST_F(OnboardingTest, FinishingItReloadsTheHotkeysWhichEndsWhatAHeldOneRecords) {
    launchWith(withSpace(manualRemote()));
    holdSpace();
    microphone.hearTone(4096);
    windows.finishOnboarding();
    EXPECT_EQ(state().dictation().state().kind, Case::transcribing);
}

TEST_F(OnboardingTest, DuringItAMissingPermissionStillShowsTheIconOfDictation) {
    privacy.revoke(PrivacyGrant::Microphone);
    launch();
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("bubble.left"));
}

// Windows

TEST_F(ReactionsTest, AnOpenWindowPutsTheApplicationIntoTheTaskBar) {
    launch();
    statusItem.choose(MenuAction::openPrefs);
    EXPECT_EQ(shell.activationPolicy(), ActivationPolicy::regular);
    EXPECT_EQ(shell.activations(), 1);
    windows.close(Window::preferences);
    EXPECT_EQ(shell.activationPolicy(), ActivationPolicy::accessory);
    EXPECT_EQ(shell.activations(), 1);
}

TEST_F(ReactionsTest, OneOfTwoWindowsClosingLeavesTheApplicationInTheTaskBar) {
    launchWith(unconfigured());
    privacy.revoke(PrivacyGrant::Microphone);
    tick();
    windows.close(Window::permissionsAlert);
    EXPECT_EQ(shell.activationPolicy(), ActivationPolicy::regular);
}

TEST_F(ReactionsTest, ThePolicyIsSetOnlyWhenItDiffers) {
    launch();
    statusItem.choose(MenuAction::openPrefs);
    statusItem.choose(MenuAction::openPrefs);
    EXPECT_EQ(shell.policyChanges(), 1);
    EXPECT_EQ(shell.activations(), 2);
}

TEST_F(ReactionsTest, StartingTheProgramAgainOpensPreferences) {
    launch();
    EXPECT_TRUE(delegate().applicationShouldHandleReopen(false));
    EXPECT_TRUE(windows.isVisible(Window::preferences));
}

TEST_F(ReactionsTest, StartingTheProgramAgainOpensNothingBesideAVisibleWindow) {
    launch();
    EXPECT_TRUE(delegate().applicationShouldHandleReopen(true));
    EXPECT_FALSE(windows.anyVisible());
}

// Removal

TEST_F(ReactionsTest, ARequestToUninstallIsPutToTheUser) {
    launch();
    notifications.post(notification::uninstallRequested);
    EXPECT_EQ(shell.questions().size(), 1u);
}

TEST_F(ReactionsTest, StoppedItNeitherLooksNorListensAnyMore) {
    launchWith(withSpace(manualRemote()));
    transcribe();
    uninstall();
    statusItem.takeSymbols();
    scheduler.advance(4s);
    EXPECT_TRUE(statusItem.takeSymbols().isEmpty());
    EXPECT_EQ(keyboard.monitorCount(), 0u);
}

TEST_F(ReactionsTest, StoppedItReactsToNoSettings) {
    launch();
    uninstall();
    state().setConfig(withSpace(local()));
    settle();
    EXPECT_EQ(keyboard.monitorCount(), 0u);
    EXPECT_FALSE(service.requests().contains(QStringLiteral("register")));
}

TEST_F(ReactionsTest, StoppedBeforeARegistrationHasSettledItShowsNothingOfIt) {
    installModel();
    launchWith(local());
    uninstall();
    statusItem.takeSymbols();
    scheduler.advance(DaemonRegistrar::settleDelay);
    EXPECT_TRUE(statusItem.takeSymbols().isEmpty());
}

TEST_F(ReactionsTest, StoppedDuringThePauseItRegistersNoReplacement) {
    installModel();
    service.current = ServiceStatus::enabled;
    launchWith(local());
    uninstall();
    wait(2s);
    EXPECT_FALSE(service.requests().contains(QStringLiteral("register")));
}

}  // namespace
}  // namespace quietlark
