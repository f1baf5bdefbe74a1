#pragma once

#include <QObject>

#include "hotkeys/hotkey_capture_coordinator.h"
#include "notifications/notification_center.h"
#include "platform/linux/processor/linux_processor.h"
#include "platform/login_item.h"
#include "program/desktop_adapters.h"
#include "servers/hardware_profile.h"
#include "servers/server_ranker.h"
#include "state/app_state.h"
#include "transcription/endpoint_file.h"
#include "transcription/server_resolver.h"
#include "ui/onboarding_view.h"
#include "ui/prefs_view.h"
#include "ui/qt_app_windows.h"
#include "ui/server_picker_pane.h"

namespace quietlark {

/// Makes the content of the running program's windows, each time afresh.
class WindowParts final : public QObject {
    Q_OBJECT

public:
    /// What the windows show of this computer.
    struct Computer {
        DesktopAdapters& desktop;
        KeyCapture& keyCapture;
        LoginItem& loginItem;
    };

    WindowParts(AppState& state, ServerResolver& resolver, const Computer& computer,
                NotificationCenter& notifications);

    [[nodiscard]] QtAppWindows::Contents contents();

Q_SIGNALS:
    void onboardingFinished();
    void allPermissionsGranted();

private:
    [[nodiscard]] QWidget* makeOnboarding();
    [[nodiscard]] QWidget* makePermissionsAlert();
    [[nodiscard]] PrefsView* makePreferences();
    [[nodiscard]] ServerPickerPane* makePicker(ServerPickerModel::Options options);

    AppState& m_state;
    ServerResolver& m_resolver;
    DesktopAdapters& m_desktop;
    LoginItem& m_loginItem;
    NotificationCenter& m_notifications;
    HotkeyCaptureCoordinator m_captureCoordinator;
    EndpointFile m_endpointFile;
    LinuxProcessor m_processor;
    HardwareProfile m_hardware{m_processor};
    ServerRanker m_ranker{m_hardware};
};

}  // namespace quietlark
