#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include <QString>
#include <tl/expected.hpp>

#include "audio/sample_converter.h"
#include "audio/wav.h"
#include "platform/audio_input.h"

namespace quietlark {

/// Why a recording did not start.
struct RecorderError {
    /// Codes of the domain "Recorder".
    enum Code { NoInputFormat = 1, NoTargetFormat = 2, NoConverter = 3 };

    QString domain;  ///< "Recorder", or "AudioInput" when the microphone did not open
    int code = 0;
    QString localizedDescription;  ///< for the user
};

/// Records the default microphone into memory as 16-bit mono samples, converting what it hears as
/// it comes in. start(), stop() and destruction on the main thread; sound arrives on the
/// microphone's own thread.
class Recorder {
public:
    /// `sampleRateHz` is the rate of the recordings.
    Recorder(double sampleRateHz, AudioInput& input);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Begins a recording; while one is running it does nothing.
    [[nodiscard]] tl::expected<void, RecorderError> start();

    /// Ends the recording and answers it as a WAV file, with everything said up to now; absent when
    /// there was no sound. Waits for the microphone no longer than AudioInput::removeTap().
    [[nodiscard]] std::optional<WavBytes> stop();

    [[nodiscard]] bool isRunning() const;

private:
    void handle(const AudioBuffer& buffer);

    const double m_targetSampleRate;
    const std::uint16_t m_targetChannels = 1;
    AudioInput& m_input;

    // Guards what follows. Never held while calling m_input, which may be waiting for its tap.
    mutable std::mutex m_mutex;
    std::optional<SampleConverter> m_converter;
    std::vector<std::int16_t> m_samples;  // keeps its storage from one recording to the next
    bool m_isRunning = false;
};

}  // namespace quietlark
