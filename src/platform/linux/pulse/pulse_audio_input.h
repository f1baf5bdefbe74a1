#pragma once

#include <chrono>
#include <memory>

#include <QByteArray>
#include <QCoreApplication>

#include "platform/audio_input.h"
#include "platform/linux/pulse/pulse_capture.h"
#include "platform/linux/pulse/pulse_connection.h"
#include "platform/linux/pulse/pulse_mainloop.h"

namespace quietlark {

/// The default microphone of PulseAudio, or of PipeWire in its place. Stays connected to the server
/// from construction on; the microphone is open only between start() and stop(), while a tap is
/// installed. What removeTap() hands over reaches the tap on the main thread, with the audio thread
/// kept away.
class PulseAudioInput final : public AudioInput {
    Q_DECLARE_TR_FUNCTIONS(PulseAudioInput)

public:
    /// `server` as in PULSE_SERVER, empty for the user's own; removeTap() waits for its sound no
    /// longer than `longestWait`.
    explicit PulseAudioInput(const QByteArray& server = {}, std::chrono::milliseconds longestWait =
                                                                std::chrono::milliseconds(100));
    ~PulseAudioInput() override;

    [[nodiscard]] AudioFormat inputFormat() const override;
    [[nodiscard]] std::optional<Unavailable> unavailable() const override;
    void installTap(std::uint32_t bufferFrames, AudioFormat format, Tap tap) override;
    void removeTap() override;
    [[nodiscard]] tl::expected<void, AudioInputError> start() override;
    void stop() override;

private:
    tl::expected<void, AudioInputError> open();

    const std::chrono::milliseconds m_longestWait;
    PulseMainloop m_mainloop;
    PulseConnection m_connection;
    std::uint32_t m_bufferFrames = 0;
    AudioFormat m_format;
    Tap m_tap;
    bool m_isRunning = false;
    std::unique_ptr<PulseCapture> m_capture;  // while running with a tap
};

}  // namespace quietlark
