#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include <QObject>
#include <QString>

#include "audio/wav.h"
#include "config/config.h"
#include "dictation/dictation_state.h"
#include "dictation/paster.h"
#include "dictation/recorder.h"
#include "platform/scheduler.h"
#include "transcription/transcription_service.h"

namespace quietlark {

/// Turns one hotkey gesture into one pasted text: record, find the server, transcribe, paste. Main
/// thread.
///
/// Every failure ends in a state with a message, which falls back to idle after a while.
class Dictation final : public QObject {
    Q_OBJECT

public:
    /// Rate of the recordings that are sent, in Hz.
    static constexpr double sampleRateHz = 16000;
    static constexpr std::chrono::milliseconds errorFlash{2000};
    static constexpr std::chrono::milliseconds unreachableFlash{5000};

    /// The settings at the moment of the call.
    using Settings = std::function<Config()>;

    Dictation(Settings settings, Recorder& recorder, TranscriptionService& transcription,
              Paster& paster, Scheduler& scheduler);

    [[nodiscard]] const DictationState& state() const { return m_state; }

    /// Starts a recording; ignored while recording or transcribing.
    void beginRecord();

    /// Ends the recording and starts on its text; ignored when nothing is being recorded.
    void endRecord();

    /// Does whichever of the two applies; nothing while a recording becomes text.
    void toggle();

    /// Forgets the server found last, and an error with it; for when the user has chosen another.
    void invalidateCache();

Q_SIGNALS:
    /// Once for each change, from the main queue, with the state as it was right after the change.
    void onStateChange(const quietlark::DictationState& state);

private:
    void setState(const DictationState& state);
    void fail(const QString& message);
    void failUnreachable(const QString& message);
    void flashErrorToIdle() { flashToIdle(DictationState::Case::error, errorFlash); }
    void flashUnreachableToIdle() {
        flashToIdle(DictationState::Case::unreachable, unreachableFlash);
    }
    void flashToIdle(DictationState::Case flashed, std::chrono::milliseconds delay);

    void transcribeAndPaste();
    void onResolved(const QString& baseURL, std::optional<ResolvedServer> server);
    void send();
    void onTranscribed(const tl::expected<QString, TranscriberError>& text);
    void onPasted(const tl::expected<void, Unavailable>& posted);

    Settings m_settings;
    Recorder& m_recorder;
    TranscriptionService& m_transcription;
    Paster& m_paster;
    Scheduler& m_scheduler;
    std::optional<ResolvedServer> m_cached;
    std::optional<QString> m_cachedFor;  ///< base address that m_cached was obtained for
    DictationState m_state;
    std::optional<WavBytes> m_wav;  ///< the recording, until it is on its way
    Cancellable m_request;          ///< the question to the server under way
};

}  // namespace quietlark
