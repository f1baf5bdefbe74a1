#pragma once

#include <QObject>

#include "hotkeys/hotkey_capture_coordinator.h"
#include "notifications/notification_center.h"
#include "platform/linux/processor/linux_processor.h"
#include "platform/linux/xdg/autostart_entry.h"
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
    WindowParts(AppState& state, ServerResolver& resolver, DesktopAdapters& desktop,
                NotificationCenter& notifications, KeyCapture& keyCapture);

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
    NotificationCenter& m_notifications;
    HotkeyCaptureCoordinator m_captureCoordinator;
    EndpointFile m_endpointFile;
    LinuxProcessor m_processor;
    HardwareProfile m_hardware{m_processor};
    ServerRanker m_ranker{m_hardware};
    AutostartEntry m_loginItem;
};

}  // namespace quietlark
