#include "picker/address_probe.h"

#include <utility>

#include "platform/scheduler.h"
#include "transcription/server_resolver.h"

namespace quietlark {

AddressProbe::AddressProbe(ServerResolver& resolver, Scheduler& scheduler,
                           std::function<void()> onChange)
    : m_resolver(resolver), m_scheduler(scheduler), m_onChange(std::move(onChange)) {}

void AddressProbe::check(const QString& baseAddress) {
    cancel();
    m_address = baseAddress;
    waitFor(typingPause);
}

void AddressProbe::reset() {
    cancel();
    m_address.clear();
    m_askedAddress.clear();
    setState({});
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
    m_askedAddress = m_address;
    m_question = m_resolver.resolveServer(
        m_address, ServerResolver::usualTimeout,
        [this](const std::optional<ResolvedServer>& server) { onAnswer(server); });
    setState({ProbeState::Case::probing});
}

void AddressProbe::onAnswer(const std::optional<ResolvedServer>& server) {
    if (server) return setState({ProbeState::Case::ok, server->model});
    waitFor(retryDelay);
    setState({ProbeState::Case::failed});
}

void AddressProbe::setState(ProbeState state) {
    if (state == m_state) return;
    m_state = std::move(state);
    // The last thing done here, as the observer may begin another check.
    m_onChange();
}

}  // namespace quietlark
