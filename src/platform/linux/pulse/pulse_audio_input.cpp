#include "platform/linux/pulse/pulse_audio_input.h"

#include <mutex>
#include <utility>

namespace quietlark {

PulseAudioInput::PulseAudioInput(const QByteArray& server, std::chrono::milliseconds longestWait)
    : m_longestWait(longestWait), m_connection(m_mainloop, server) {}

PulseAudioInput::~PulseAudioInput() {
    stop();
}

AudioFormat PulseAudioInput::inputFormat() const {
    return m_connection.microphoneFormat();
}

std::optional<Unavailable> PulseAudioInput::unavailable() const {
    if (inputFormat().channels > 0) return std::nullopt;
    if (m_connection.serverAnswers()) {
        return Unavailable{
            tr("There is no microphone: plug one in, or switch it on in the sound settings.")};
    }
    return Unavailable{
        tr("No sound server answers: start PipeWire (package pipewire-pulse) or PulseAudio.")};
}

void PulseAudioInput::installTap(std::uint32_t bufferFrames, AudioFormat format, Tap tap) {
    removeTap();
    m_bufferFrames = bufferFrames;
    m_format = format;
    m_tap = std::move(tap);
    // A microphone that is gone by now is silent, as one that goes while it is open.
    if (m_isRunning) (void)open();
}

void PulseAudioInput::removeTap() {
    if (m_capture) {
        const std::scoped_lock lock(m_mainloop);
        m_capture->finish(m_longestWait);
        m_capture.reset();
    }
    m_tap = nullptr;
}

tl::expected<void, AudioInputError> PulseAudioInput::start() {
    if (m_isRunning) return {};
    if (m_tap) {
        if (auto opened = open(); !opened) return opened;
    }
    m_isRunning = true;
    return {};
}

void PulseAudioInput::stop() {
    m_isRunning = false;
    if (!m_capture) return;
    const std::scoped_lock lock(m_mainloop);
    m_capture.reset();
}

tl::expected<void, AudioInputError> PulseAudioInput::open() {
    const std::scoped_lock lock(m_mainloop);
    pa_context* context = m_connection.context();
    if (!context) return tl::unexpected(AudioInputError{tr("The audio server does not answer.")});
    auto capture = PulseCapture::open(m_mainloop, context, m_format, m_bufferFrames, m_tap);
    if (!capture) return tl::unexpected(capture.error());
    m_capture = std::move(*capture);
    return {};
}

}  // namespace quietlark
