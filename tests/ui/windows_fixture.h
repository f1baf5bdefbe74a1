#pragma once

#include <memory>
#include <utility>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QTest>

#include "fakes/fake_key_capture.h"
#include "fakes/fake_login_item.h"
#include "fakes/fake_privacy.h"
#include "permissions/permissions.h"
#include "picker/picker_fixture.h"
#include "support/wait.h"
#include "ui/general_pane.h"
#include "ui/hotkey_row.h"
#include "ui/onboarding_view.h"
#include "ui/permissions_alert_view.h"
#include "ui/prefs_view.h"
#include "ui/qt_app_windows.h"
#include "ui/server_pane.h"
#include "ui/server_picker_pane.h"

namespace quietlark {

/// The application's windows on a computer that the test plays.
class WindowsFixture : public PickerFixture {
protected:
    using Kind = AppWindows::Kind;

    /// The window, opened.
    QWidget& open(Kind kind) {
        windows().show(kind);
        return shown();
    }

    QtAppWindows& windows() {
        if (!m_windows) m_windows = std::make_unique<QtAppWindows>(contents());
        return *m_windows;
    }

    void closeAll() {
        m_windows.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// The one window on the screen.
    QWidget& shown() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible()) continue;
            EXPECT_TRUE(waitUntil([widget] { return widget->isActiveWindow(); }));
            return *widget;
        }
        ADD_FAILURE() << "no window is shown";
        static QWidget none;
        return none;
    }

    void grantAll() {
        for (const auto grant :
             {PrivacyGrant::Microphone, PrivacyGrant::InputMonitoring, PrivacyGrant::Accessibility})
            privacy.grant(grant);
        localNetwork = true;
    }

    /// The visible button of that text or accessible name; a null pointer where there is none.
    QAbstractButton* button(const char* name) {
        for (auto* each : shown().findChildren<QAbstractButton*>()) {
            const bool isCalled =
                each->text() == text(name) || each->accessibleName() == text(name);
            if (each->isVisible() && isCalled) return each;
        }
        return nullptr;
    }

    /// Whether the user can read exactly this text somewhere.
    bool reads(const char* what) {
        for (const QLabel* label : shown().findChildren<QLabel*>()) {
            if (label->isVisible() && label->text() == text(what)) return true;
        }
        return false;
    }

    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    FakePrivacy privacy;
    bool localNetwork = false;
    Permissions permissions{privacy, panes, scheduler, {[this] { return localNetwork; }}};
    FakeKeyCapture keyCapture;
    FakeLoginItem loginItem;
    int onboardingsFinished = 0;
    int timesAllGranted = 0;

private:
    QtAppWindows::Contents contents() {
        return {[this] { return makeOnboarding(); },
                [this] {
                    auto* view = new PermissionsAlertView(permissions, scheduler);
                    QObject::connect(view, &PermissionsAlertView::allGranted,
                                     [this] { ++timesAllGranted; });
                    return view;
                },
                [this] { return makePreferences(); }};
    }

    QWidget* makeOnboarding() {
        auto* view = new OnboardingView(
            {std::make_unique<OnboardingModel>(state(), permissions, scheduler),
             std::make_unique<DoneStepModel>(state(), resolver, files.endpoint, hardware,
                                             scheduler),
             [this] { return makePicker({.allowFinishLater = true}); },
             [this] { return makeHotkeyRows(state(), m_coordinator); }, state().modelDownloader()});
        QObject::connect(view, &OnboardingView::finished, [this] { ++onboardingsFinished; });
        return view;
    }

    PrefsView* makePreferences() {
        return new PrefsView(
            {{PrefsTab::general, new GeneralPane(std::make_unique<GeneralPaneModel>(
                                     state(), loginItem, notifications))},
             {PrefsTab::hotkey, makeHotkeyRows(state(), m_coordinator)},
             {PrefsTab::server, new ServerPane(std::make_unique<ServerPaneModel>(
                                                   state(), resolver, files.endpoint, scheduler),
                                               [this] { return makeServerPicker(); })}});
    }

    ServerPickerPane* makeServerPicker() {
        const bool isChosen = !std::holds_alternative<Unconfigured>(state().config().serverMode);
        return makePicker({.offersCancel = isChosen});
    }

    ServerPickerPane* makePicker(ServerPickerModel::Options offers) {
        return new ServerPickerPane(state(), ranker, resolver, scheduler, offers);
    }

    HotkeyCaptureCoordinator m_coordinator{keyCapture};
    std::unique_ptr<QtAppWindows> m_windows;
};

}  // namespace quietlark
