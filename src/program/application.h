#pragma once

#include <optional>

#include <QObject>

#include "app/app_delegate.h"
#include "app/launch_gate.h"
#include "commands/console.h"
#include "dictation/dictation.h"
#include "dictation/paster.h"
#include "dictation/recorder.h"
#include "hotkeys/uncaptured_key_events.h"
#include "local_server/background_model_fetcher.h"
#include "notifications/notification_center.h"
#include "platform/linux/journal/journal_log.h"
#include "platform/linux/session_bus/session_bus_service.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard.h"
#include "platform/qt/qt_http_client.h"
#include "platform/qt/qt_worker_thread.h"
#include "platform/qt_widgets/focus_aware_key_synthesizer.h"
#include "platform/qt_widgets/qt_key_capture.h"
#include "platform/qt_widgets/tray_status_item.h"
#include "program/desktop_adapters.h"
#include "program/own_traces.h"
#include "program/quit_signals.h"
#include "program/window_parts.h"
#include "state/app_state.h"
#include "transcription/endpoint_file.h"
#include "transcription/transcription_service.h"
#include "ui/qt_app_windows.h"
#include "ui/qt_application_shell.h"

namespace quietlark {

/// The running program: owns every part of it, in the order in which they build on each other, and
/// is the one place that chooses adapters for this system.
class Application final : public QObject {
    Q_OBJECT

public:
    /// Reads the settings, connects to the desktop and begins to work once the desktop has told how
    /// it stands; never waits for another program. `service` tells others how dictation goes.
    Application(SessionBusService& service, Console& console);

    /// Does what somebody else in the session wants of dictation.
    DictationReport carryOut(DictationOrder order);

private:
    AppState::Makers makers();
    void launch();
    void reopen();
    void sayHow(const DictationHotkeys& hotkeys, const QStringList& complaints);
    void sayThereIsNoTray();
    void report(const DictationState& state);
    void endWithoutDisplay();

    Console& m_console;
    SessionBusService& m_service;
    QuitSignals m_quitSignals;
    DesktopAdapters m_desktop;

    JournalLog m_log;
    QtHttpClient m_http;
    X11Pasteboard m_pasteboard;
    EndpointFile m_endpointFile;
    TranscriptionService m_transcription;
    Recorder m_recorder;
    FocusAwareKeySynthesizer m_keys;
    Paster m_paster;

    NotificationCenter m_notifications;
    QtWorkerThread m_worker;
    BackgroundModelFetcher m_modelFetcher;
    AppState m_state;

    TrayStatusItem m_statusItem;
    QtKeyCapture m_keyCapture;
    UncapturedKeyEvents m_keyboard;
    OwnTraces m_traces{Config::defaultFileURL()};
    WindowParts m_windowParts;
    QtAppWindows m_windows;
    QtApplicationShell m_shell;
    std::optional<AppDelegate> m_delegate;  ///< from the launch on
    Cancellable m_notification;
    LaunchGate m_gate;
    bool m_reopenIsDue = false;  ///< asked for before the launch
    QString m_saidHow;
};

}  // namespace quietlark
