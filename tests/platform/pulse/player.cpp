#include "platform/pulse/player.h"

namespace quietlark {
namespace {

constexpr pa_sample_spec mono48k = {.format = PA_SAMPLE_FLOAT32NE, .rate = 48000, .channels = 1};

void wakeOnSuccess(pa_stream*, int, void* mainloop) {
    static_cast<PulseMainloop*>(mainloop)->wake();
}

}  // namespace

Player::Player(const QByteArray& server, const std::vector<float>& sound) {
    const std::scoped_lock lock(m_mainloop);
    m_context.reset(pa_context_new(m_mainloop.api(), "player"));
    const auto wakeOnState = [](pa_context*, void* self) {
        static_cast<Player*>(self)->m_mainloop.wake();
    };
    pa_context_set_state_callback(m_context.get(), wakeOnState, this);
    pa_context_connect(m_context.get(), server.constData(), PA_CONTEXT_NOAUTOSPAWN, nullptr);
    while (PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context.get())) &&
           pa_context_get_state(m_context.get()) != PA_CONTEXT_READY)
        m_mainloop.wait();

    m_stream.reset(pa_stream_new(m_context.get(), "sound", &mono48k, nullptr));
    const auto wakeOnStreamState = [](pa_stream*, void* self) {
        static_cast<Player*>(self)->m_mainloop.wake();
    };
    pa_stream_set_state_callback(m_stream.get(), wakeOnStreamState, this);
    const auto bytes = static_cast<std::uint32_t>(sound.size() * sizeof(float));
    const pa_buffer_attr buffer = {.maxlength = bytes,
                                   .tlength = bytes,
                                   .prebuf = bytes,
                                   .minreq = static_cast<std::uint32_t>(-1),
                                   .fragsize = static_cast<std::uint32_t>(-1)};
    pa_stream_connect_playback(m_stream.get(), nullptr, &buffer, PA_STREAM_NOFLAGS, nullptr,
                               nullptr);
    while (PA_STREAM_IS_GOOD(pa_stream_get_state(m_stream.get())) &&
           pa_stream_get_state(m_stream.get()) != PA_STREAM_READY)
        m_mainloop.wait();
    pa_stream_write(m_stream.get(), sound.data(), bytes, nullptr, 0, PA_SEEK_RELATIVE);
}

Player::~Player() {
    const std::scoped_lock lock(m_mainloop);
    pa_stream_set_state_callback(m_stream.get(), nullptr, nullptr);
    pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
    pa_stream_disconnect(m_stream.get());
    pa_context_disconnect(m_context.get());
}

std::int64_t Player::heardFrames() {
    const std::scoped_lock lock(m_mainloop);
    const PulseOperation question(
        pa_stream_update_timing_info(m_stream.get(), &wakeOnSuccess, &m_mainloop));
    while (question && pa_operation_get_state(question.get()) == PA_OPERATION_RUNNING)
        m_mainloop.wait();
    const pa_timing_info* timing = pa_stream_get_timing_info(m_stream.get());
    if (!timing) return 0;
    const auto inDevice = static_cast<std::int64_t>(pa_usec_to_bytes(timing->sink_usec, &mono48k));
    return (timing->read_index - inDevice) / static_cast<std::int64_t>(sizeof(float));
}

}  // namespace quietlark
