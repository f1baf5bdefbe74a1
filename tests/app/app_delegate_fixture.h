#pragma once

#include <memory>

#include "app/app_delegate.h"
#include "fakes/fake_app_windows.h"
#include "fakes/fake_application_shell.h"
#include "fakes/fake_installation.h"
#include "fakes/fake_key_event_source.h"
#include "fakes/fake_login_item.h"
#include "fakes/fake_own_files.h"
#include "fakes/fake_privacy.h"
#include "fakes/fake_privacy_records.h"
#include "fakes/fake_recycler.h"
#include "fakes/fake_status_item.h"
#include "fakes/fake_user_defaults.h"
#include "state/app_state_fixture.h"

namespace quietlark {

/// The whole application without a window, on virtual time. At first it is installed in /opt/, has
/// all permissions, and uses a server at http://box:8080.
class AppDelegateFixture : public AppStateFixture {
protected:
    using Window = AppWindows::Kind;

    static constexpr KeyCode space = 49;

    AppDelegateFixture() {
        saved(manualRemote());
        privacy.grant(PrivacyGrant::Microphone);
        privacy.grant(PrivacyGrant::InputMonitoring);
        privacy.grant(PrivacyGrant::Accessibility);
    }

    /// The delegate, which the first call creates, and the state with it.
    AppDelegate& delegate() {
        if (!m_delegate) {
            m_delegate = std::make_unique<AppDelegate>(
                state(), AppDelegate::Desktop{statusItem, windows, shell},
                AppDelegate::Computer{
                    keyboard,
                    permissions,
                    {installation, defaults, loginItem, ownFiles, privacyRecords, recycler}},
                notifications, scheduler);
        }
        return *m_delegate;
    }

    /// The launch and what follows from it at once.
    void launch() {
        delegate().applicationDidFinishLaunching();
        settle();
    }

    void launchWith(const Config& config) {
        saved(config);
        launch();
    }

    /// The user saves other settings.
    void set(const Config& config) {
        state().setConfig(config);
        settle();
    }

    /// Time passes, and the service manager answers what that brought.
    void wait(std::chrono::milliseconds duration) {
        scheduler.advance(duration);
        settle();
    }

    /// The next look at the permissions.
    void tick() { wait(PermissionsWatch::interval); }

    void holdSpace() {
        keyboard.press(space);
        settle();
    }

    void letGoOfSpace() {
        keyboard.release(space);
        settle();
    }

    /// Dictation is left waiting for the server's answer.
    void transcribe() {
        state().dictation().beginRecord();
        microphone.hearTone(4096);
        state().dictation().endRecord();
        settle();
    }

    /// The user wants the application removed, and is sure.
    void uninstall() {
        notifications.post(notification::uninstallRequested);
        shell.answer(true);
    }

    static Config withSpace(Config config) {
        config.hotkey = QStringLiteral("space");
        return config;
    }

    FakePrivacy privacy;
    bool localNetworkGranted = true;
    Permissions permissions{privacy, panes, scheduler, {[this] { return localNetworkGranted; }}};
    FakeStatusItem statusItem;
    FakeAppWindows windows;
    FakeApplicationShell shell;
    FakeKeyEventSource keyboard;
    FakeInstallation installation;
    FakeUserDefaults defaults;
    FakeLoginItem loginItem;
    FakeOwnFiles ownFiles;
    FakePrivacyRecords privacyRecords;
    FakeRecycler recycler;

private:
    std::unique_ptr<AppDelegate> m_delegate;
};

}  // namespace quietlark
