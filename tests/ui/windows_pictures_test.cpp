#include <QPlainTextEdit>
#include <QPushButton>

#include "app/window_presenter.h"
#include "ui/hotkey_capture_view.h"
#include "ui/look.h"
#include "ui/qt_application_shell.h"
#include "ui/windows_fixture.h"

namespace quietlark {
namespace {

class WindowsPicturesTest : public WindowsFixture, public testing::WithParamInterface<Look> {
protected:
    ~WindowsPicturesTest() override { closeAll(); }

    void take(const char* state) { takePicture(shown(), text(state), GetParam()); }

    void openOnboarding(int step, Config config = {}) {
        config.onboardingStep = step;
        config.onboardingComplete = false;
        saved(config);
        open(Kind::onboarding);
    }
    void openServerTab(const Config& config) {
        saved(config);
        windows().showServerTab();
    }

    /// The first hotkey field of the window.
    HotkeyCaptureView& field() { return *shown().findChild<HotkeyCaptureView*>(); }

private:
    const LookInForce m_look{GetParam()};
};

TEST_P(WindowsPicturesTest, PermissionsAlert) {
    open(Kind::permissionsAlert);
    take("permissions-all-missing");
    for (const auto grant :
         {PrivacyGrant::Microphone, PrivacyGrant::InputMonitoring, PrivacyGrant::Accessibility})
        privacy.grant(grant);
    scheduler.advance(PermissionPoll::interval);
    take("permissions-one-missing");
}

TEST_P(WindowsPicturesTest, OnboardingWelcome) {
    openOnboarding(OnboardingModel::welcomeStep);
    take("onboarding-welcome");
}

TEST_P(WindowsPicturesTest, OnboardingServer) {
    openOnboarding(OnboardingModel::serverStep);
    take("onboarding-server");
}

TEST_P(WindowsPicturesTest, OnboardingPermissions) {
    openOnboarding(OnboardingModel::permissionsStep);
    take("onboarding-permissions-missing");
    privacy.grant(PrivacyGrant::Microphone);
    scheduler.advance(PermissionPoll::interval);
    take("onboarding-permissions-some");
    grantAll();
    scheduler.advance(PermissionPoll::interval);
    take("onboarding-permissions-granted");
}

TEST_P(WindowsPicturesTest, OnboardingHotkeys) {
    openOnboarding(OnboardingModel::hotkeyStep);
    take("onboarding-hotkeys");
    field().click();
    take("onboarding-hotkeys-capturing");
}

TEST_P(WindowsPicturesTest, OnboardingDoneWithARemoteServer) {
    openOnboarding(OnboardingModel::doneStep, manualRemote());
    take("onboarding-done-checking");
    network.runAnswers();
    take("onboarding-done-failed");
    serverAnswersAt("http://box:8080");
    scheduler.advance(DoneStepModel::probeInterval);
    network.runAnswers();
    take("onboarding-done-ready");
}

TEST_P(WindowsPicturesTest, OnboardingDoneWithTheLocalServer) {
    openOnboarding(OnboardingModel::doneStep, local());
    take("onboarding-done-download-starting");
    state().modelDownloader().start();
    scheduler.runPosted();
    take("onboarding-done-downloading-from-the-beginning");
    fetcher.report(420, 1000);
    scheduler.runPosted();
    take("onboarding-done-downloading");
    fetcher.fail(text("The server has closed the connection."));
    scheduler.runPosted();
    take("onboarding-done-download-failed");
    installModel();
    service.current = ServiceStatus::enabled;
    scheduler.advance(DoneStepModel::probeInterval);
    take("onboarding-done-connecting");
    service.current = ServiceStatus::requiresApproval;
    scheduler.advance(DoneStepModel::probeInterval);
    take("onboarding-done-approval");
}

TEST_P(WindowsPicturesTest, OnboardingDoneWithASlowLocalServer) {
    installModel();
    service.current = ServiceStatus::enabled;
    serverPublishesItsEndpoint("rtf=0.5\n");
    serverAnswersAt("http://127.0.0.1:9000");
    openOnboarding(OnboardingModel::doneStep, local());
    network.runAnswers();
    scheduler.advance(DoneStepModel::rtfInterval);
    take("onboarding-done-slow");
}

TEST_P(WindowsPicturesTest, OnboardingDoneWithASlowRemoteServer) {
    serverAnswersAt("http://box.local:8001");
    openOnboarding(OnboardingModel::doneStep, discoveredRemote());
    network.runAnswers();
    publish("Box", "0.5");
    take("onboarding-done-slow-remote");
    shown().findChild<QPlainTextEdit*>()->setPlainText(text("hello world"));
    take("onboarding-done-tried");
}

TEST_P(WindowsPicturesTest, OnboardingDoneWithoutAServer) {
    openOnboarding(OnboardingModel::doneStep);
    take("onboarding-done-deferred");
}

TEST_P(WindowsPicturesTest, PreferencesGeneral) {
    open(Kind::preferences);
    take("preferences-general");
}

TEST_P(WindowsPicturesTest, PreferencesHotkey) {
    Config config = manualRemote();
    config.toggleHotkey = text("cmd+shift+f5");
    saved(config);
    open(Kind::preferences).findChild<PrefsView*>()->select(PrefsTab::hotkey);
    take("preferences-hotkey");
    field().click();
    take("preferences-hotkey-capturing");
}

TEST_P(WindowsPicturesTest, PreferencesHotkeyThatIsNone) {
    Config config = manualRemote();
    config.hotkey = text(" ");
    config.toggleHotkey = QString(80, u'x');
    saved(config);
    open(Kind::preferences).findChild<PrefsView*>()->select(PrefsTab::hotkey);
    take("preferences-hotkey-none");
}

TEST_P(WindowsPicturesTest, PreferencesServerRemote) {
    openServerTab(manualRemote());
    take("preferences-server-connecting");
    network.runAnswers();
    take("preferences-server-unreachable");
    serverAnswersAt("http://box:8080");
    scheduler.advance(ServerPaneModel::probeInterval);
    network.runAnswers();
    take("preferences-server-connected");
    shown().findChild<QPushButton*>(text("change"))->click();
    take("preferences-server-editing");
}

TEST_P(WindowsPicturesTest, PreferencesServerDiscovered) {
    serverAnswersAt("http://box.local:8001");
    openServerTab(discoveredRemote());
    network.runAnswers();
    take("preferences-server-discovered");
}

TEST_P(WindowsPicturesTest, PreferencesServerUnconfigured) {
    openServerTab(unconfigured());
    take("preferences-server-unconfigured");
}

TEST_P(WindowsPicturesTest, PreferencesServerLocal) {
    openServerTab(local());
    take("preferences-server-preparing");
    state().modelDownloader().start();
    scheduler.runPosted();
    fetcher.report(420, 1000);
    scheduler.runPosted();
    take("preferences-server-downloading");
    fetcher.fail(text("The server has closed the connection."));
    scheduler.runPosted();
    take("preferences-server-download-failed");
    installModel();
    service.current = ServiceStatus::notRegistered;
    scheduler.advance(ServerPaneModel::pollInterval);
    take("preferences-server-starting");
    service.current = ServiceStatus::requiresApproval;
    scheduler.advance(ServerPaneModel::pollInterval);
    take("preferences-server-approval");
    service.current = ServiceStatus::enabled;
    serverPublishesItsEndpoint();
    scheduler.advance(ServerPaneModel::pollInterval);
    take("preferences-server-ready");
}

TEST_P(WindowsPicturesTest, Alerts) {
    QtApplicationShell shell;
    WindowPresenter presenter(windows(), shell);
    presenter.showMoveToApplicationsAlert();
    take("alert-not-installed");
    presenter.showServerStartFailure(
        text("The unit net.quietlark.server.service is not there. Install Quietlark again."));
    take("alert-server-failed");
    presenter.askWhetherToUninstall([](bool) {});
    take("alert-uninstall");
    presenter.showRecycleFailure(text("The package manager owns Quietlark: remove the package "
                                      "quietlark."),
                                 {});
    take("alert-not-removed");
    shown().close();
}

INSTANTIATE_TEST_SUITE_P(Looks, WindowsPicturesTest, testing::ValuesIn(looks), nameOfLook);

}  // namespace
}  // namespace quietlark
