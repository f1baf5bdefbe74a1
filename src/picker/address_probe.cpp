#include "picker/address_probe.h"

#include <utility>

#include "platform/scheduler.h"
#include "transcription/server_resolver.h"

namespace quietlark {

AddressProbe::AddressProbe(ServerResolver& resolver, Scheduler& scheduler, Observer observer)
    : m_resolver(resolver), m_scheduler(scheduler), m_observer(std::move(observer)) {}

void AddressProbe::check(const QString& baseAddress) {
    cancel();
    m_address = baseAddress;
    waitFor(typingPause);
}

void AddressProbe::reset() {
    cancel();
    m_address.clear();
    publish({}, {});
}

void AddressProbe::cancel() {
    m_wait.reset();
    m_question.cancel();
}

void AddressProbe::waitFor(std::chrono::milliseconds delay) {
    m_wait = std::make_unique<QObject>();
    m_scheduler.after(delay, m_wait.get(), [this] { ask(); });
}

void AddressProbe::ask() {
    m_question = m_resolver.resolveServer(
        m_address, ServerResolver::usualTimeout,
        [this](const std::optional<ResolvedServer>& server) { onAnswer(server); });
    publish({ProbeState::Case::probing}, m_address);
}

void AddressProbe::onAnswer(const std::optional<ResolvedServer>& server) {
    if (server) return publish({ProbeState::Case::ok, server->model}, m_askedAddress);
    waitFor(retryDelay);
    publish({ProbeState::Case::failed}, m_askedAddress);
}

void AddressProbe::publish(ProbeState state, const QString& askedAddress) {
    if (state == m_state && askedAddress == m_askedAddress) return;
    m_observer.willChange();
    m_state = std::move(state);
    m_askedAddress = askedAddress;
    // The last thing done here, as the observer may begin another check.
    m_observer.changed();
}

}  // namespace quietlark
