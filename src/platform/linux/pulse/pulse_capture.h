#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <tl/expected.hpp>

#include "platform/audio_input.h"
#include "platform/linux/pulse/pulse_mainloop.h"
#include "platform/linux/pulse/pulse_pointer.h"

namespace quietlark {

/// The open microphone: one record stream from the default source, whose sound is handed to a tap.
/// All calls, destruction too, with the audio thread's lock.
class PulseCapture {
public:
    /// Has buffers of `bufferFrames` frames handed to `tap` on the audio thread, as soon as the
    /// server sends sound.
    [[nodiscard]] static tl::expected<std::unique_ptr<PulseCapture>, AudioInputError> open(
        PulseMainloop& mainloop, pa_context* context, AudioFormat format,
        std::uint32_t bufferFrames, AudioInput::Tap tap);

    ~PulseCapture();
    PulseCapture(const PulseCapture&) = delete;
    PulseCapture& operator=(const PulseCapture&) = delete;

    /// Waits until what the microphone has heard by now has come in, and some 10 ms more, no longer
    /// than `limit`; hands over what the tap has not had yet.
    void finish(std::chrono::milliseconds limit);

private:
    PulseCapture(PulseMainloop& mainloop, AudioFormat format, std::uint32_t bufferFrames,
                 AudioInput::Tap tap);

    bool connect(pa_context* context);
    void awaitWhatWasHeard(std::chrono::milliseconds limit);
    void take(const void* data, std::size_t bytes);
    void deliver();
    [[nodiscard]] bool isUp() const;  // open, or about to be
    [[nodiscard]] bool isOpen() const;
    static void onReadable(pa_stream*, std::size_t, void* self);
    static void onState(pa_stream*, void* self);
    static void onTiming(pa_stream*, int success, void* self);
    static void onLimit(pa_mainloop_api*, pa_time_event*, const timeval*, void* self);

    PulseMainloop& m_mainloop;
    const AudioFormat m_format;
    const pa_sample_spec m_sampleSpec;
    const std::size_t m_bufferSamples;
    const AudioInput::Tap m_tap;
    std::vector<float> m_pending;  // what the tap has not had yet; less than one buffer
    std::int64_t m_receivedBytes = 0;
    std::optional<std::int64_t> m_awaitedBytes;  // of the whole stream, once finish() knows
    bool m_limitReached = false;
    PulseStream m_stream;
};

}  // namespace quietlark
