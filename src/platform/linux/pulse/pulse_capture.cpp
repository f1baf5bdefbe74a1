#include "platform/linux/pulse/pulse_capture.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <QCoreApplication>

namespace quietlark {
namespace {

// How much sound the server gathers before it sends it.
constexpr pa_usec_t fragmentMicroseconds = 10000;

// PipeWire's account of what was heard is as old as its last cycle. So finish() asks for a little
// more sound than was owed; what is too much helps to push the rest out of a rate converter. A
// microphone that sends nothing more is not waited for.
constexpr pa_usec_t surplusMicroseconds = 10000;
constexpr pa_usec_t longestSurplusWait = 3 * fragmentMicroseconds;

constexpr auto streamFlags =
    static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_NO_REMAP_CHANNELS);

PulseProperties streamProperties() {
    PulseProperties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_NAME, "Dictation");
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ROLE, "a11y");
    return properties;
}

pa_sample_spec sampleSpec(AudioFormat format) {
    return {.format = PA_SAMPLE_FLOAT32NE,
            .rate = static_cast<std::uint32_t>(format.sampleRateHz),
            .channels = static_cast<std::uint8_t>(format.channels)};
}

}  // namespace

tl::expected<std::unique_ptr<PulseCapture>, AudioInputError> PulseCapture::open(
    PulseMainloop& mainloop, pa_context* context, AudioFormat format, std::uint32_t bufferFrames,
    AudioInput::Tap tap) {
    std::unique_ptr<PulseCapture> capture(
        new PulseCapture(mainloop, format, bufferFrames, std::move(tap)));
    if (!capture->connect(context))
        return tl::unexpected(
            AudioInputError{QCoreApplication::translate("PulseAudioInput",
                                                        "The microphone could not be opened: %1.")
                                .arg(QString::fromUtf8(pa_strerror(pa_context_errno(context))))});
    return capture;
}

PulseCapture::PulseCapture(PulseMainloop& mainloop, AudioFormat format, std::uint32_t bufferFrames,
                           AudioInput::Tap tap)
    : m_mainloop(mainloop),
      m_format(format),
      m_sampleSpec(sampleSpec(format)),
      m_bufferSamples(std::size_t{bufferFrames} * format.channels),
      m_tap(std::move(tap)) {
    m_pending.reserve(m_bufferSamples);
}

PulseCapture::~PulseCapture() {
    if (!m_stream) return;
    pa_stream_set_read_callback(m_stream.get(), nullptr, nullptr);
    // A stream that the server has not confirmed yet cannot be closed: it stays with its context
    // and would come up with nobody to close it.
    const auto closeWhenReady = [](pa_stream* stream, void*) {
        if (pa_stream_get_state(stream) == PA_STREAM_READY) pa_stream_disconnect(stream);
    };
    pa_stream_set_state_callback(m_stream.get(), closeWhenReady, nullptr);
    if (isOpen()) pa_stream_disconnect(m_stream.get());
}

bool PulseCapture::connect(pa_context* context) {
    pa_channel_map channels;
    if (!pa_channel_map_init_extend(&channels, m_format.channels, PA_CHANNEL_MAP_DEFAULT))
        return false;
    m_stream.reset(pa_stream_new_with_proplist(context, nullptr, &m_sampleSpec, &channels,
                                               streamProperties().get()));
    if (!m_stream) return false;
    pa_stream_set_read_callback(m_stream.get(), &onReadable, this);
    pa_stream_set_state_callback(m_stream.get(), &onState, this);
    constexpr auto serversChoice = static_cast<std::uint32_t>(-1);
    const pa_buffer_attr buffer = {
        .maxlength = serversChoice,
        .tlength = serversChoice,
        .prebuf = serversChoice,
        .minreq = serversChoice,
        .fragsize =
            static_cast<std::uint32_t>(pa_usec_to_bytes(fragmentMicroseconds, &m_sampleSpec)),
    };
    // No device means the server's default source at this moment.
    return pa_stream_connect_record(m_stream.get(), nullptr, &buffer, streamFlags) == 0;
}

void PulseCapture::finish(std::chrono::milliseconds limit) {
    if (isUp()) awaitWhatWasHeard(limit);
    deliver();
}

void PulseCapture::awaitWhatWasHeard(std::chrono::milliseconds limit) {
    pa_context* context = pa_stream_get_context(m_stream.get());
    const pa_usec_t due = pa_rtclock_now() + std::chrono::microseconds(limit).count();
    pa_time_event* timer = pa_context_rttime_new(context, due, &onLimit, this);
    const auto waitWhile = [this](auto condition) {
        while (isUp() && !m_limitReached && condition())
            m_mainloop.wait();
    };
    // The server may have begun to listen without our having heard of it.
    waitWhile([this] { return !isOpen(); });
    const PulseOperation question(
        isOpen() ? pa_stream_update_timing_info(m_stream.get(), &onTiming, this) : nullptr);
    waitWhile([this] { return !m_awaitedBytes || m_receivedBytes < *m_awaitedBytes; });

    const pa_usec_t sufficient = pa_rtclock_now() + longestSurplusWait;
    pa_context_rttime_restart(context, timer, std::min(due, sufficient));
    const auto surplus =
        static_cast<std::int64_t>(pa_usec_to_bytes(surplusMicroseconds, &m_sampleSpec));
    waitWhile([&] { return m_receivedBytes < *m_awaitedBytes + surplus; });

    if (question) pa_operation_cancel(question.get());
    m_mainloop.api()->time_free(timer);
}

void PulseCapture::onTiming(pa_stream* stream, int success, void* self) {
    auto* capture = static_cast<PulseCapture*>(self);
    const pa_timing_info* timing = success ? pa_stream_get_timing_info(stream) : nullptr;
    // Until then heard: what has come in, what the server has yet to send, what it has yet to take
    // from the device.
    std::int64_t awaited = capture->m_receivedBytes;
    if (timing) {
        awaited += timing->write_index - timing->read_index;
        awaited += static_cast<std::int64_t>(
            pa_usec_to_bytes(timing->source_usec, &capture->m_sampleSpec));
    }
    capture->m_awaitedBytes = awaited;
    capture->m_mainloop.wake();
}

void PulseCapture::onReadable(pa_stream* stream, std::size_t, void* self) {
    auto* capture = static_cast<PulseCapture*>(self);
    const void* data = nullptr;
    std::size_t bytes = 0;
    while (pa_stream_peek(stream, &data, &bytes) == 0 && bytes > 0) {
        capture->take(data, bytes);
        pa_stream_drop(stream);
    }
    capture->m_mainloop.wake();
}

void PulseCapture::take(const void* data, std::size_t bytes) {
    m_receivedBytes += static_cast<std::int64_t>(bytes);
    const auto* next = static_cast<const std::byte*>(data);
    std::size_t left = bytes / sizeof(float);
    while (left > 0) {
        const std::size_t old = m_pending.size();
        const std::size_t count = std::min(left, m_bufferSamples - old);
        m_pending.resize(old + count);
        // A hole in the stream has a length and no data: silence.
        if (next) {
            std::memcpy(m_pending.data() + old, next, count * sizeof(float));
            next += count * sizeof(float);
        }
        left -= count;
        if (m_pending.size() == m_bufferSamples) deliver();
    }
}

void PulseCapture::deliver() {
    if (m_pending.empty()) return;
    m_tap({.format = m_format, .samples = m_pending});
    m_pending.clear();
}

bool PulseCapture::isUp() const {
    return PA_STREAM_IS_GOOD(pa_stream_get_state(m_stream.get()));
}

bool PulseCapture::isOpen() const {
    return pa_stream_get_state(m_stream.get()) == PA_STREAM_READY;
}

void PulseCapture::onState(pa_stream*, void* self) {
    static_cast<PulseCapture*>(self)->m_mainloop.wake();
}

void PulseCapture::onLimit(pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
    auto* capture = static_cast<PulseCapture*>(self);
    capture->m_limitReached = true;
    capture->m_mainloop.wake();
}

}  // namespace quietlark
