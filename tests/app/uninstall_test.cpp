#include "app/app_delegate_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

const QString fingerprintKey = QStringLiteral("lastRegisteredExecutableFingerprint");
const QString unregistering = QStringLiteral("unregister");

class UninstallTest : public AppDelegateFixture {
protected:
    UninstallTest() {
        service.current = ServiceStatus::enabled;
        loginItem.current = ServiceStatus::enabled;
        defaults.set(fingerprintKey, QStringLiteral("1700000000.25"));
        installModel();
        saved(withSpace(local()));
        serverPublishesItsEndpoint();
    }

    /// Asked for by the button of Preferences, which are open.
    void ask() {
        launch();
        statusItem.choose(MenuAction::openPrefs);
        notifications.post(notification::uninstallRequested);
    }

    void confirm() {
        shell.answer(true);
        settle();
    }

    void askAndConfirm() {
        ask();
        confirm();
    }

    void systemKeepsRecords() {
        privacyRecords.services = {
            {PrivacyService::PostEvent, QStringLiteral("PostEvent")},
            {PrivacyService::Microphone, QStringLiteral("Microphone")},
            {PrivacyService::AppleEvents, QStringLiteral("AppleEvents")},
            {PrivacyService::ListenEvent, QStringLiteral("ListenEvent")},
            {PrivacyService::Accessibility, QStringLiteral("Accessibility")}};
    }

    void expectPathsRemoved() const {
        EXPECT_EQ(ownFiles.removedFolders(),
                  (QStringList{directory.filePath(QStringLiteral("Quietlark")), directory.path()}));
        EXPECT_EQ(ownFiles.removedFiles(),
                  (QStringList{endpointPath, QStringLiteral("/tmp/quietlark.log")}));
    }

    void expectGone() const {
        EXPECT_EQ(recycler.requests(), QStringList{installation.path});
        EXPECT_TRUE(shell.isTerminated());
    }
};

// The question

TEST_F(UninstallTest, TheUserIsAskedInTheActiveApplication) {
    ask();
    ASSERT_EQ(shell.questions().size(), 1u);
    EXPECT_EQ(shell.questions().front(),
              (Confirmation{
                  QStringLiteral("Uninstall Quietlark?"),
                  QStringLiteral(
                      "This will stop the background server, delete the downloaded model and all "
                      "settings, revoke granted permissions, and move Quietlark to the Trash. "
                      "macOS will prompt for your administrator password to revoke the "
                      "permissions. You can always reinstall by downloading the app again."),
                  QStringLiteral("Uninstall"), QStringLiteral("Cancel")}));
    // Once for Preferences, once for the question.
    EXPECT_EQ(shell.activations(), 2);
}

TEST_F(UninstallTest, CancelAtTheConfirmationLeavesTimersHotkeysFilesAndRegistrationsUntouched) {
    ask();
    const auto monitors = keyboard.monitorCount();
    shell.answer(false);
    settle();
    EXPECT_GT(monitors, 0u);
    EXPECT_EQ(keyboard.monitorCount(), monitors);
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_TRUE(loginItem.requests().isEmpty());
    EXPECT_FALSE(loginItem.wasForgotten());
    EXPECT_TRUE(defaults.string(fingerprintKey).has_value());
    EXPECT_TRUE(ownFiles.removedFolders().isEmpty());
    EXPECT_TRUE(ownFiles.removedFiles().isEmpty());
    EXPECT_TRUE(recycler.requests().isEmpty());
    EXPECT_FALSE(shell.isTerminated());
    statusItem.takeSymbols();
    tick();
    EXPECT_FALSE(statusItem.takeSymbols().isEmpty());
}

TEST_F(UninstallTest, TheQuestionIsNotAskedTwiceAtOnceButAgainAfterANo) {
    ask();
    notifications.post(notification::uninstallRequested);
    EXPECT_EQ(shell.questions().size(), 1u);
    shell.answer(false);
    delegate().uninstall();
    EXPECT_EQ(shell.questions().size(), 2u);
}

// Once the user is sure

TEST_F(UninstallTest, EverythingIsTakenAwayAndTheApplicationQuits) {
    askAndConfirm();
    EXPECT_EQ(service.requests(), QStringList{unregistering});
    EXPECT_EQ(loginItem.current, ServiceStatus::notRegistered);
    EXPECT_TRUE(loginItem.wasForgotten());
    EXPECT_FALSE(defaults.string(fingerprintKey).has_value());
    expectPathsRemoved();
    expectGone();
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(UninstallTest, TimersAndHotkeysAndWindowsAreGoneBeforeTheServerIs) {
    ask();
    shell.answer(true);
    EXPECT_EQ(keyboard.monitorCount(), 0u);
    EXPECT_FALSE(windows.anyVisible());
    EXPECT_EQ(service.requests(), QStringList{unregistering});
    EXPECT_TRUE(ownFiles.removedFolders().isEmpty());
    statusItem.takeSymbols();
    scheduler.advance(10s);
    EXPECT_TRUE(statusItem.takeSymbols().isEmpty());
}

TEST_F(UninstallTest, AHeldHotkeyIsLetGoOf) {
    ask();
    holdSpace();
    EXPECT_EQ(state().dictation().state().kind, Case::recording);
    confirm();
    EXPECT_NE(state().dictation().state().kind, Case::recording);
    expectGone();
}

TEST_F(UninstallTest, AServerThatCannotBeTakenBackDoesNotStopTheRest) {
    service.failure = ServiceError{QStringLiteral("No.")};
    askAndConfirm();
    expectPathsRemoved();
    expectGone();
}

TEST_F(UninstallTest, ALoginItemThatCannotBeSwitchedOffDoesNotStopTheRest) {
    loginItem.failure = ServiceError{QStringLiteral("No.")};
    askAndConfirm();
    expectPathsRemoved();
    expectGone();
}

TEST_F(UninstallTest, ALoginItemThatAwaitsApprovalIsLeftAlone) {
    loginItem.current = ServiceStatus::requiresApproval;
    askAndConfirm();
    EXPECT_TRUE(loginItem.requests().isEmpty());
}

TEST_F(UninstallTest, WithTheModelDirectoryGoneItStillResetsThePermissions) {
    systemKeepsRecords();
    QDir(files.model.directory()).removeRecursively();
    askAndConfirm();
    EXPECT_EQ(privacyRecords.lines().size(), 1);
    privacyRecords.finish();
    expectPathsRemoved();
    expectGone();
}

TEST_F(UninstallTest, ADownloadIsStoppedBeforeItsFilesAreRemoved) {
    removeModel();
    ask();
    settle();
    EXPECT_TRUE(fetcher.isFetching());
    shell.answer(true);
    while (fetcher.isFetching()) {
        EXPECT_TRUE(ownFiles.removedFolders().isEmpty());
        service.answer();
    }
    EXPECT_TRUE(ownFiles.removedFolders().isEmpty());
    fetcher.becomeStill();
    expectPathsRemoved();
}

TEST_F(UninstallTest, WhatIsSavedMeanwhileBringsNothingBack) {
    ask();
    shell.answer(true);
    state().setConfig(withSpace(manualRemote()));
    notifications.post(notification::modelReady);
    EXPECT_TRUE(delegate().applicationShouldHandleReopen(false));
    statusItem.choose(MenuAction::openPrefs);
    settle();
    EXPECT_EQ(keyboard.monitorCount(), 0u);
    EXPECT_FALSE(windows.anyVisible());
    EXPECT_EQ(service.requests(), QStringList{unregistering});
}

TEST_F(UninstallTest, AnEndpointFileThatNoServerHasWrittenStays) {
    QFile file(endpointPath);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("local=here\nDear diary\n");
    file.close();
    askAndConfirm();
    EXPECT_EQ(ownFiles.removedFiles(), QStringList{QStringLiteral("/tmp/quietlark.log")});
}

TEST_F(UninstallTest, FoldersThatWereMissingAtALaunchGoAfterAllElse) {
    ownFiles.missing = {QStringLiteral("/home/me/.config")};
    systemKeepsRecords();
    ask();
    ownFiles.missing = {QStringLiteral("/home/me/.local")};
    delegate().applicationDidFinishLaunching();
    confirm();
    EXPECT_TRUE(ownFiles.removedEmptyFolders().isEmpty());
    recycler.failure = RecycleError{QStringLiteral("Remove the package quietlark.")};
    privacyRecords.finish();
    EXPECT_EQ(ownFiles.removedEmptyFolders(),
              (QStringList{QStringLiteral("/home/me/.config"), QStringLiteral("/home/me/.local")}));
}

// The permissions

TEST_F(UninstallTest, ThePermissionsAreResetInOrderAndAllInOneGo) {
    systemKeepsRecords();
    askAndConfirm();
    EXPECT_EQ(
        privacyRecords.lines(),
        QStringList{QStringLiteral("reset Microphone net.quietlark.app 2>/dev/null || true; "
                                   "reset ListenEvent net.quietlark.app 2>/dev/null || true; "
                                   "reset Accessibility net.quietlark.app 2>/dev/null || true; "
                                   "reset AppleEvents net.quietlark.app 2>/dev/null || true; "
                                   "reset PostEvent net.quietlark.app 2>/dev/null || true")});
}

TEST_F(UninstallTest, TheBundleIsMovedOnceTheAdministratorHasAnswered) {
    systemKeepsRecords();
    askAndConfirm();
    EXPECT_TRUE(recycler.requests().isEmpty());
    EXPECT_FALSE(shell.isTerminated());
    privacyRecords.finish();
    expectGone();
}

TEST_F(UninstallTest, DecliningTheAdministratorPromptStillMovesTheBundleToTheTrashAndQuits) {
    systemKeepsRecords();
    askAndConfirm();
    // The system tells nobody whether it was declined.
    privacyRecords.finish();
    expectGone();
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(UninstallTest, OnlyWhatTheSystemKeepsRecordsOfIsReset) {
    privacyRecords.services = {{PrivacyService::Accessibility, QStringLiteral("Accessibility")}};
    askAndConfirm();
    EXPECT_EQ(
        privacyRecords.lines(),
        QStringList{QStringLiteral("reset Accessibility net.quietlark.app 2>/dev/null || true")});
}

TEST_F(UninstallTest, WhereTheSystemKeepsNoRecordsNobodyIsAskedForAPassword) {
    askAndConfirm();
    EXPECT_TRUE(privacyRecords.lines().isEmpty());
    expectGone();
}

TEST_F(UninstallTest,
       ABundleWithoutAnIdentifierSkipsDefaultsAndPermissionsAndStillDeletesAndTrashesItself) {
    systemKeepsRecords();
    installation.identifier.reset();
    askAndConfirm();
    EXPECT_TRUE(defaults.string(fingerprintKey).has_value());
    EXPECT_TRUE(privacyRecords.lines().isEmpty());
    expectPathsRemoved();
    expectGone();
}

// The Trash

TEST_F(UninstallTest, ABundleThatStaysIsReportedAndTheApplicationQuitsAfterwards) {
    recycler.failure = RecycleError{QStringLiteral("Remove the package quietlark.")};
    askAndConfirm();
    EXPECT_EQ(shell.alerts(),
              (std::vector<Alert>{
                  {Alert::Style::warning, QStringLiteral("Couldn't move Quietlark to the Trash"),
                   QStringLiteral("Remove the package quietlark."), QStringLiteral("OK")}}));
    expectPathsRemoved();
    EXPECT_FALSE(shell.isTerminated());
    shell.closeAlert();
    EXPECT_TRUE(shell.isTerminated());
}

TEST_F(UninstallTest, OutsideTheApplicationFoldersItWorksToo) {
    installation.path = QStringLiteral("/home/me/Downloads/Quietlark");
    askAndConfirm();
    expectPathsRemoved();
    expectGone();
}

}  // namespace
}  // namespace quietlark
