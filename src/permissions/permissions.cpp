#include "permissions/permissions.h"

#include <utility>

namespace quietlark {

Permissions::Permissions(Privacy& privacy, SettingsPanes& panes, Scheduler& scheduler,
                         LocalNetwork localNetwork)
    : m_privacy(privacy),
      m_panes(panes),
      m_scheduler(scheduler),
      m_localNetwork(std::move(localNetwork)) {}

Permissions::Status Permissions::status() const {
    return {
        .microphone = has(PrivacyGrant::Microphone),
        .inputMonitoring = has(PrivacyGrant::InputMonitoring),
        .accessibility = has(PrivacyGrant::Accessibility),
        .localNetwork = m_localNetwork.granted(),
    };
}

Permissions::Explanations Permissions::explanations() const {
    Explanations explanations{
        .microphone = explain(PrivacyGrant::Microphone),
        .inputMonitoring = explain(PrivacyGrant::InputMonitoring),
        .accessibility = explain(PrivacyGrant::Accessibility),
        .localNetwork = std::nullopt,
    };
    if (!m_localNetwork.granted()) {
        const auto unavailable = m_localNetwork.unavailable();
        explanations.localNetwork =
            unavailable ? unavailable->reason
                        : tr("Servers nearby cannot be looked for: install and start the Avahi "
                             "service (package avahi-daemon), and join a network.");
    }
    return explanations;
}

Permissions::Status Permissions::requestMissing(const Status& status) {
    if (!status.microphone) requestMic();
    if (!status.inputMonitoring) (void)m_privacy.requestInputMonitoring();
    if (!status.accessibility) (void)m_privacy.requestAccessibility();
    (void)m_localNetwork.granted();
    return status;
}

void Permissions::requestMic(std::function<void(bool granted)> completion) {
    // The answer comes on any thread and may outlive this object.
    m_privacy.requestMicrophone(
        [&scheduler = m_scheduler, completion = std::move(completion)](bool granted) {
            if (!completion) return;
            scheduler.post([completion, granted] { completion(granted); });
        });
}

void Permissions::grantMic() {
    const bool wasGranted = has(PrivacyGrant::Microphone);
    requestMic([&panes = m_panes, wasGranted](bool granted) {
        if (!granted && !wasGranted) panes.open(SettingsPane::Microphone);
    });
}

void Permissions::grantInputMonitoring() {
    if (!m_privacy.requestInputMonitoring()) m_panes.open(SettingsPane::InputMonitoring);
}

void Permissions::grantAccessibility() {
    if (!m_privacy.requestAccessibility()) m_panes.open(SettingsPane::Accessibility);
}

void Permissions::grantLocalNetwork() {
    m_panes.open(SettingsPane::LocalNetwork);
}

bool Permissions::has(PrivacyGrant grant) const {
    return !m_privacy.missing(grant);
}

std::optional<QString> Permissions::explain(PrivacyGrant grant) const {
    const auto missing = m_privacy.missing(grant);
    return missing ? std::optional(missing->reason) : std::nullopt;
}

}  // namespace quietlark
