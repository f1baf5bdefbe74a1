#include "program/window_parts.h"

#include <memory>

#include "screens/registration_request.h"
#include "ui/general_pane.h"
#include "ui/hotkey_row.h"
#include "ui/permissions_alert_view.h"
#include "ui/server_pane.h"

namespace quietlark {

WindowParts::WindowParts(AppState& state, ServerResolver& resolver, const Computer& computer,
                         NotificationCenter& notifications)
    : m_state(state),
      m_resolver(resolver),
      m_desktop(computer.desktop),
      m_loginItem(computer.loginItem),
      m_notifications(notifications),
      m_captureCoordinator(computer.keyCapture) {}

QtAppWindows::Contents WindowParts::contents() {
    return {[this] { return makeOnboarding(); }, [this] { return makePermissionsAlert(); },
            [this] { return makePreferences(); }};
}

QWidget* WindowParts::makeOnboarding() {
    auto* view = new OnboardingView(
        {std::make_unique<OnboardingModel>(m_state, m_desktop.permissions, m_desktop.scheduler),
         std::make_unique<DoneStepModel>(m_state, m_resolver, m_endpointFile, m_hardware,
                                         m_desktop.scheduler),
         [this] { return makePicker({.allowFinishLater = true}); },
         [this] { return makeHotkeyRows(m_state, m_captureCoordinator); },
         m_state.modelDownloader()});
    connect(view, &OnboardingView::finished, this, &WindowParts::onboardingFinished);
    return view;
}

QWidget* WindowParts::makePermissionsAlert() {
    auto* view = new PermissionsAlertView(m_desktop.permissions, m_desktop.scheduler);
    connect(view, &PermissionsAlertView::allGranted, this, &WindowParts::allPermissionsGranted);
    return view;
}

PrefsView* WindowParts::makePreferences() {
    const auto makeServerPicker = [this] {
        const bool isChosen = !std::holds_alternative<Unconfigured>(m_state.config().serverMode);
        return makePicker({.offersCancel = isChosen});
    };
    return new PrefsView({
        {PrefsTab::general, new GeneralPane(std::make_unique<GeneralPaneModel>(m_state, m_loginItem,
                                                                               m_notifications))},
        {PrefsTab::hotkey, makeHotkeyRows(m_state, m_captureCoordinator)},
        {PrefsTab::server,
         new ServerPane(std::make_unique<ServerPaneModel>(m_state, m_resolver, m_endpointFile,
                                                          m_desktop.scheduler),
                        makeServerPicker)},
    });
}

ServerPickerPane* WindowParts::makePicker(ServerPickerModel::Options options) {
    auto* picker =
        new ServerPickerPane(m_state, m_ranker, m_resolver, m_desktop.scheduler, options);
    connect(picker, &ServerPickerPane::committed, this,
            [this] { requestMissingRegistration(m_state, m_notifications); });
    return picker;
}

}  // namespace quietlark
