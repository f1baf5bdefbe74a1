#include "platform/linux/pulse/pulse_connection.h"

#include <algorithm>
#include <utility>

namespace quietlark {
namespace {

constexpr std::chrono::milliseconds shortestPause(100);
// A user who has started the server again expects to be heard at once.
constexpr std::chrono::milliseconds longestPause(1000);

PulseProperties applicationProperties() {
    PulseProperties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Quietlark");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "net.quietlark.app");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "net.quietlark.app");
    return properties;
}

}  // namespace

PulseConnection::PulseConnection(PulseMainloop& mainloop, QByteArray server)
    : m_mainloop(mainloop), m_server(std::move(server)), m_pause(shortestPause) {
    const std::scoped_lock lock(m_mainloop);
    connect();
}

PulseConnection::~PulseConnection() {
    const std::scoped_lock lock(m_mainloop);
    if (m_retry) m_mainloop.api()->time_free(m_retry);
    pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
    pa_context_set_subscribe_callback(m_context.get(), nullptr, nullptr);
    pa_context_disconnect(m_context.get());
    m_context.reset();
}

pa_context* PulseConnection::context() const {
    return pa_context_get_state(m_context.get()) == PA_CONTEXT_READY ? m_context.get() : nullptr;
}

AudioFormat PulseConnection::microphoneFormat() const {
    const std::scoped_lock lock(m_mutex);
    return m_format;
}

bool PulseConnection::serverAnswers() const {
    const std::scoped_lock lock(m_mutex);
    return m_serverAnswers;
}

void PulseConnection::connect() {
    m_context.reset(
        pa_context_new_with_proplist(m_mainloop.api(), nullptr, applicationProperties().get()));
    m_isReading = false;
    pa_context_set_state_callback(m_context.get(), &onState, this);
    pa_context_set_subscribe_callback(m_context.get(), &onChange, this);
    // Starting a server is the desktop's business, and would hold up this thread.
    pa_context_connect(m_context.get(), m_server.isEmpty() ? nullptr : m_server.constData(),
                       PA_CONTEXT_NOAUTOSPAWN, nullptr);
}

void PulseConnection::onState(pa_context* context, void* self) {
    auto* connection = static_cast<PulseConnection*>(self);
    const auto state = pa_context_get_state(context);
    if (state == PA_CONTEXT_READY) {
        connection->m_pause = shortestPause;
        constexpr auto mask = static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SERVER |
                                                                  PA_SUBSCRIPTION_MASK_SOURCE);
        const PulseOperation request(pa_context_subscribe(context, mask, nullptr, nullptr));
        connection->refresh();
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        connection->publish(false, {});
        connection->retryLater();
    }
}

void PulseConnection::retryLater() {
    if (m_retry) return;
    const auto due = pa_rtclock_now() + std::chrono::microseconds(m_pause).count();
    m_retry = pa_context_rttime_new(m_context.get(), due, &onRetry, this);
    m_pause = std::min(2 * m_pause, longestPause);
}

void PulseConnection::onRetry(pa_mainloop_api* api, pa_time_event* event, const timeval*,
                              void* self) {
    auto* connection = static_cast<PulseConnection*>(self);
    api->time_free(event);
    connection->m_retry = nullptr;
    connection->connect();
}

void PulseConnection::onChange(pa_context*, pa_subscription_event_type_t, std::uint32_t,
                               void* self) {
    static_cast<PulseConnection*>(self)->refresh();
}

void PulseConnection::refresh() {
    m_changedWhileReading = m_isReading;
    if (m_isReading) return;
    m_isReading = true;
    m_reading = {};
    // Answered in this order.
    const PulseOperation first(pa_context_get_server_info(m_context.get(), &onServer, this));
    const PulseOperation second(pa_context_get_source_info_list(m_context.get(), &onSource, this));
}

void PulseConnection::onServer(pa_context*, const pa_server_info* server, void* self) {
    if (!server || !server->default_source_name) return;
    static_cast<PulseConnection*>(self)->m_reading.defaultName = server->default_source_name;
}

void PulseConnection::onSource(pa_context*, const pa_source_info* source, int end, void* self) {
    auto* connection = static_cast<PulseConnection*>(self);
    Sources& reading = connection->m_reading;
    if (end == 0) {
        const bool isMonitor = source->monitor_of_sink != PA_INVALID_INDEX;
        if (!isMonitor) reading.haveMicrophone = true;
        if (reading.defaultName != source->name) return;
        reading.defaultIsMonitor = isMonitor;
        reading.defaultFormat = {.sampleRateHz = static_cast<double>(source->sample_spec.rate),
                                 .channels = source->sample_spec.channels};
        return;
    }
    connection->m_isReading = false;
    if (connection->m_changedWhileReading) return connection->refresh();
    const bool isMicrophone = !reading.defaultIsMonitor || reading.haveMicrophone;
    connection->publish(true, isMicrophone ? reading.defaultFormat : AudioFormat{});
}

void PulseConnection::publish(bool serverAnswers, AudioFormat format) {
    const std::scoped_lock lock(m_mutex);
    m_serverAnswers = serverAnswers;
    m_format = format;
}

}  // namespace quietlark
