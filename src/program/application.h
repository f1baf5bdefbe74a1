#pragma once

#include <QObject>

#include "app/dictation_hotkeys.h"
#include "config/config.h"
#include "dictation/dictation.h"
#include "dictation/paster.h"
#include "dictation/recorder.h"
#include "platform/linux/journal/journal_log.h"
#include "platform/linux/pulse/pulse_audio_input.h"
#include "platform/linux/x11/keys/x11_key_connection.h"
#include "platform/linux/x11/keys/x11_key_event_source.h"
#include "platform/linux/x11/keys/x11_key_synthesizer.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard.h"
#include "platform/qt/qt_http_client.h"
#include "platform/qt/qt_scheduler.h"
#include "program/quit_signals.h"
#include "transcription/endpoint_file.h"
#include "transcription/transcription_service.h"

namespace quietlark {

/// The running program: owns every part of it, in the order in which they build on each other, and
/// is the one place that chooses adapters for this system.
class Application final : public QObject {
    Q_OBJECT

public:
    /// Reads the settings and connects to the desktop; never waits for another program.
    Application();

    /// Installs the hotkeys and runs until asked to quit. Answers the exit status: 0, or 1 with a
    /// sentence on standard error when no hotkey can work here, or none can any more.
    int run();

private:
    void report(const DictationState& state);
    void endWithoutDisplay();

    QuitSignals m_quitSignals;

    QtScheduler m_scheduler;
    QtHttpClient m_http;
    JournalLog m_log;
    X11KeyConnection m_keyConnection;
    X11KeyEventSource m_keyboard;
    X11KeySynthesizer m_keys;
    X11Pasteboard m_pasteboard;
    PulseAudioInput m_microphone;

    Config m_config;
    EndpointFile m_endpointFile;
    TranscriptionService m_transcription;
    Recorder m_recorder;
    Paster m_paster;
    Dictation m_dictation;
    DictationHotkeys m_hotkeys;
};

}  // namespace quietlark
