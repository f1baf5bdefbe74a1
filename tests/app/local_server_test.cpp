#include "app/app_delegate_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

const QString registering = QStringLiteral("register");
const QString unregistering = QStringLiteral("unregister");
const QString fingerprintKey = QStringLiteral("lastRegisteredExecutableFingerprint");

class LocalServerTest : public AppDelegateFixture {
protected:
    /// The settings choose the local server, the model is there, and the server is as given.
    void launchLocal(ServiceStatus status) {
        installModel();
        service.current = status;
        launchWith(local());
    }

    void wasRegisteredFromThisExecutable() {
        defaults.set(fingerprintKey, QStringLiteral("1700000000.25"));
    }

    QString remembered() const { return defaults.string(fingerprintKey).value_or(QString()); }

    std::size_t symbolsDuring(std::chrono::milliseconds duration) {
        statusItem.takeSymbols();
        scheduler.advance(duration);
        return std::size_t(statusItem.takeSymbols().size());
    }
};

// At the launch

TEST_F(LocalServerTest, AServerThatIsNotRegisteredOrNotFoundIsRegistered) {
    launchLocal(ServiceStatus::notRegistered);
    EXPECT_EQ(service.requests(), QStringList{registering});
    EXPECT_EQ(service.current, ServiceStatus::enabled);
    EXPECT_EQ(remembered(), QStringLiteral("1700000000.25"));
}

TEST_F(LocalServerTest, AServerThatIsNotFoundIsRegisteredToo) {
    launchLocal(ServiceStatus::notFound);
    EXPECT_EQ(service.requests(), QStringList{registering});
}

TEST_F(LocalServerTest, WithoutTheModelItIsFetchedAndARunningServerTakenBack) {
    service.current = ServiceStatus::enabled;
    launchWith(local());
    EXPECT_EQ(service.requests(), QStringList{unregistering});
    EXPECT_TRUE(fetcher.isFetching());
}

TEST_F(LocalServerTest, WithoutTheModelAServerThatDoesNotRunIsLeftAlone) {
    service.current = ServiceStatus::requiresApproval;
    launchWith(local());
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_TRUE(fetcher.isFetching());
}

TEST_F(LocalServerTest, WithARemoteServerARegistrationIsTakenBackAndShownALittleLater) {
    for (const auto status : {ServiceStatus::enabled, ServiceStatus::requiresApproval}) {
        service.current = status;
        launch();
        EXPECT_EQ(service.requests().last(), unregistering);
    }
    EXPECT_GE(symbolsDuring(DaemonRegistrar::settleDelay), 1u);
}

TEST_F(LocalServerTest, WithARemoteServerWhatIsNotRegisteredIsLeftAlone) {
    launch();
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_EQ(symbolsDuring(2s), 0u);
}

TEST_F(LocalServerTest, WithoutAChoiceNothingIsDone) {
    service.current = ServiceStatus::enabled;
    launchWith(unconfigured());
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_FALSE(fetcher.isFetching());
}

// When the choice changes

TEST_F(LocalServerTest, LeavingTheLocalServerTakesItBackAndRefreshesTheMenuALittleLater) {
    wasRegisteredFromThisExecutable();
    serverPublishesItsEndpoint();
    launchLocal(ServiceStatus::enabled);
    set(manualRemote());
    EXPECT_EQ(service.requests(), QStringList{unregistering});
    EXPECT_EQ(symbolsDuring(DaemonRegistrar::settleDelay - 1ms), 0u);
    EXPECT_EQ(symbolsDuring(1ms), 1u);
}

TEST_F(LocalServerTest, ComingBackToTheLocalServerRunsTheLaunchReconciliationAgain) {
    wasRegisteredFromThisExecutable();
    launchLocal(ServiceStatus::enabled);
    set(manualRemote());
    set(local());
    EXPECT_EQ(service.requests(), (QStringList{unregistering, registering}));
}

TEST_F(LocalServerTest, ComingBackWhileTheServerIsBeingTakenBackRegistersItAgain) {
    wasRegisteredFromThisExecutable();
    launchLocal(ServiceStatus::enabled);
    state().setConfig(manualRemote());
    scheduler.runPosted();
    state().setConfig(local());
    settle();
    EXPECT_EQ(service.requests(), (QStringList{unregistering, registering}));
    EXPECT_EQ(service.current, ServiceStatus::enabled);
}

TEST_F(LocalServerTest, ChoosingItRegistersItOnceHoweverManyAskForIt) {
    installModel();
    launch();
    state().setConfig(local());
    notifications.post(notification::registerDaemonRequested);
    settle();
    EXPECT_EQ(service.requests(), QStringList{registering});
}

TEST_F(LocalServerTest, AChangeBetweenRemoteServersDoesNothing) {
    launch();
    service.current = ServiceStatus::enabled;
    set(manualRemote(QStringLiteral("other")));
    set(unconfigured());
    set(manualRemote());
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(LocalServerTest, SavingWithAnUnchangedServerOnlyReloadsTheHotkeys) {
    wasRegisteredFromThisExecutable();
    launchLocal(ServiceStatus::enabled);
    serverPublishesItsEndpoint();
    wait(1s);
    statusItem.takeSymbols();
    set(withSpace(local()));
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_TRUE(statusItem.takeSymbols().isEmpty());
    holdSpace();
    EXPECT_EQ(state().dictation().state().kind, Case::recording);
}

// Registering

TEST_F(LocalServerTest, AFailureToRegisterIsShown) {
    launch();
    service.failure = ServiceError{QStringLiteral("Out of luck.")};
    notifications.post(notification::registerDaemonRequested);
    settle();
    ASSERT_EQ(shell.alerts().size(), 1u);
    EXPECT_EQ(shell.alerts()[0].style, Alert::Style::warning);
    EXPECT_EQ(shell.alerts()[0].title, QStringLiteral("Couldn't start the server"));
    EXPECT_EQ(shell.alerts()[0].text, QStringLiteral("Out of luck."));
    EXPECT_TRUE(remembered().isEmpty());
}

TEST_F(LocalServerTest, AServerThatNeedsApprovalOnceRegisteredOpensTheServerPane) {
    launchLocal(ServiceStatus::notRegistered);
    service.current = ServiceStatus::requiresApproval;
    scheduler.advance(DaemonRegistrar::settleDelay);
    EXPECT_EQ(windows.serverTabShownCount(), 1);
}

TEST_F(LocalServerTest, WithoutAFingerprintTheOneBeforeIsForgotten) {
    wasRegisteredFromThisExecutable();
    installation.modified.reset();
    launchLocal(ServiceStatus::notRegistered);
    EXPECT_TRUE(remembered().isEmpty());
}

TEST_F(LocalServerTest, TheModelBeingReadyRegistersTheServer) {
    launchWith(local());
    installModel();
    notifications.post(notification::modelReady);
    settle();
    EXPECT_EQ(service.requests(), QStringList{registering});
}

TEST_F(LocalServerTest, TheModelBeingReadyOnlyRefreshesWhereTheServerRuns) {
    launchWith(local());
    installModel();
    service.current = ServiceStatus::enabled;
    statusItem.takeSymbols();
    notifications.post(notification::modelReady);
    EXPECT_EQ(statusItem.takeSymbols(), QStringList{QStringLiteral("ellipsis.circle")});
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(LocalServerTest, TheModelBeingReadyIsNothingToARemoteServer) {
    launch();
    notifications.post(notification::modelReady);
    settle();
    EXPECT_TRUE(service.requests().isEmpty());
}

// A replaced program

TEST_F(LocalServerTest, AnUnchangedExecutableLeavesTheServerAlone) {
    wasRegisteredFromThisExecutable();
    launchLocal(ServiceStatus::enabled);
    wait(2s);
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(LocalServerTest, AChangedExecutableRegistersTheServerAfreshAfterAPause) {
    wasRegisteredFromThisExecutable();
    installation.modified = 1'700'000'001.5;
    launchLocal(ServiceStatus::enabled);
    EXPECT_EQ(service.requests(), QStringList{unregistering});
    wait(DaemonRegistrar::replacementPause - 1ms);
    EXPECT_EQ(service.requests(), QStringList{unregistering});
    wait(1ms);
    EXPECT_EQ(service.requests(), (QStringList{unregistering, registering}));
    EXPECT_EQ(remembered(), QStringLiteral("1700000001.5"));
}

TEST_F(LocalServerTest, AnExecutableThatWasNeverRememberedCountsAsChanged) {
    launchLocal(ServiceStatus::enabled);
    EXPECT_EQ(service.requests(), QStringList{unregistering});
}

TEST_F(LocalServerTest, WithoutAFingerprintTheServerIsLeftAlone) {
    installation.modified.reset();
    launchLocal(ServiceStatus::enabled);
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(LocalServerTest, WhenTakingItBackFailsTheServerIsNotRegisteredAfresh) {
    service.failure = ServiceError{QStringLiteral("Out of luck.")};
    launchLocal(ServiceStatus::enabled);
    wait(2s);
    EXPECT_EQ(service.requests(), QStringList{unregistering});
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(LocalServerTest, AServerThatIsTakenBackButDoesNotStopIsRegisteredAfresh) {
    service.failure = ServiceError{QStringLiteral("It does not stop.")};
    service.current = ServiceStatus::enabled;
    installModel();
    saved(local());
    delegate().applicationDidFinishLaunching();
    service.current = ServiceStatus::notRegistered;
    settle();
    wait(DaemonRegistrar::replacementPause);
    EXPECT_EQ(service.requests(), (QStringList{unregistering, registering}));
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(LocalServerTest, WhenRegisteringItAfreshFailsNothingIsShownOrRemembered) {
    launchLocal(ServiceStatus::enabled);
    service.failure = ServiceError{QStringLiteral("Out of luck.")};
    wait(DaemonRegistrar::replacementPause);
    EXPECT_EQ(service.requests(), (QStringList{unregistering, registering}));
    EXPECT_TRUE(shell.alerts().empty());
    EXPECT_TRUE(remembered().isEmpty());
}

TEST_F(LocalServerTest, LeavingTheLocalServerDuringThePauseCallsTheNewRegistrationOff) {
    launchLocal(ServiceStatus::enabled);
    set(manualRemote());
    wait(2s);
    EXPECT_EQ(service.requests(), (QStringList{unregistering, unregistering}));
}

// While it starts

TEST_F(LocalServerTest, AStartingServerAnimatesTheIconUntilItsEndpointFileIsThere) {
    wasRegisteredFromThisExecutable();
    launchLocal(ServiceStatus::enabled);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("ellipsis.circle"));
    EXPECT_EQ(symbolsDuring(240ms), 2u);
    scheduler.advance(120ms);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("ellipsis.circle.fill"));
    serverPublishesItsEndpoint();
    scheduler.advance(1s);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("bubble.left"));
    EXPECT_EQ(symbolsDuring(900ms), 0u);
}

TEST_F(LocalServerTest, AStartingServerIsLookedAtEverySecond) {
    wasRegisteredFromThisExecutable();
    launchLocal(ServiceStatus::enabled);
    scheduler.advance(900ms);
    serverPublishesItsEndpoint();
    service.current = ServiceStatus::notRegistered;
    scheduler.advance(99ms);
    EXPECT_EQ(symbolsDuring(1ms), 1u);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("exclamationmark.bubble"));
}

TEST_F(LocalServerTest, AServerThatAwaitsApprovalIsLookedAtEverySecondWithoutAnAnimation) {
    launchLocal(ServiceStatus::requiresApproval);
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("exclamationmark.bubble"));
    EXPECT_EQ(symbolsDuring(2s), 2u);
}

TEST_F(LocalServerTest, TheDownloadRefreshesTheStatusItem) {
    launchWith(local());
    EXPECT_EQ(statusItem.symbol(), QStringLiteral("arrow.down.circle"));
    statusItem.takeSymbols();
    fetcher.fail(QStringLiteral("HTTP 404"));
    settle();
    EXPECT_EQ(statusItem.takeSymbols(), QStringList{QStringLiteral("arrow.down.circle")});
}

}  // namespace
}  // namespace quietlark
