#pragma once

#include <chrono>
#include <mutex>
#include <string>

#include <QByteArray>

#include "platform/audio_input.h"
#include "platform/linux/pulse/pulse_mainloop.h"
#include "platform/linux/pulse/pulse_pointer.h"

namespace quietlark {

/// The connection to the audio server, kept for good: made at once, made again with growing pauses
/// when the server goes away. Follows the user's default source.
///
/// The default source is a microphone unless the server had nothing else to offer than the monitor
/// of a loudspeaker. Where there is another source, a monitor is the default only because the user
/// chose it, and then it counts.
class PulseConnection {
public:
    /// `server` as in PULSE_SERVER; empty means the user's own.
    PulseConnection(PulseMainloop& mainloop, QByteArray server);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    /// The connection, or null while there is none. With the audio thread's lock.
    [[nodiscard]] pa_context* context() const;

    /// Format of the microphone; no channels when there is none. Any thread, never waits.
    [[nodiscard]] AudioFormat microphoneFormat() const;

    /// Whether the server is there and has told about its sources. Any thread, never waits.
    [[nodiscard]] bool serverAnswers() const;

private:
    /// What the server has told about its sources.
    struct Sources {
        std::string defaultName;
        AudioFormat defaultFormat;
        bool defaultIsMonitor = false;
        bool haveMicrophone = false;
    };

    void connect();
    void retryLater();
    void refresh();
    void publish(bool serverAnswers, AudioFormat format);
    static void onState(pa_context*, void* self);
    static void onRetry(pa_mainloop_api*, pa_time_event*, const timeval*, void* self);
    static void onChange(pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self);
    static void onServer(pa_context*, const pa_server_info*, void* self);
    static void onSource(pa_context*, const pa_source_info*, int end, void* self);

    PulseMainloop& m_mainloop;
    const QByteArray m_server;
    PulseContext m_context;
    pa_time_event* m_retry = nullptr;
    std::chrono::milliseconds m_pause;
    Sources m_reading;
    bool m_isReading = false;
    bool m_changedWhileReading = false;

    mutable std::mutex m_mutex;  // guards these two alone: the audio thread's lock may be held long
    bool m_serverAnswers = false;
    AudioFormat m_format;
};

}  // namespace quietlark
