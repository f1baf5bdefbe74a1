#include "screens/onboarding_model.h"

#include <algorithm>
#include <utility>

namespace quietlark {

namespace {

int savedStep(const Config& config) {
    return static_cast<int>(
        std::clamp<std::int64_t>(config.onboardingStep, 0, OnboardingModel::totalSteps - 1));
}

}  // namespace

OnboardingModel::OnboardingModel(AppState& appState, Permissions& permissions, Scheduler& scheduler)
    : m_appState(appState),
      m_permissions(permissions),
      m_poll(permissions, scheduler),
      m_step(savedStep(appState.config())) {
    connect(&m_appState, &AppState::configChanged, this, &OnboardingModel::changed);
    connect(&m_poll, &PermissionPoll::changed, this, &OnboardingModel::changed);
}

bool OnboardingModel::canAdvance() const {
    switch (m_step) {
        case permissionsStep:
            return m_poll.status().allGranted();
        case hotkeyStep:
            return !m_appState.config().hotkey.trimmed().isEmpty();
        case doneStep:
            return m_doneReadiness.mayFinish();
        default:
            return true;
    }
}

QString OnboardingModel::nextTitle() const {
    return m_step == totalSteps - 1 ? tr("Finish") : tr("Next");
}

std::vector<PermissionRow> OnboardingModel::permissionRows() const {
    return m_permissions.all(m_poll.status());
}

void OnboardingModel::appear() {
    if (std::exchange(m_isShown, true)) return;
    m_poll.start();
    m_appState.discoveredServers().start();
}

void OnboardingModel::disappear() {
    if (!std::exchange(m_isShown, false)) return;
    m_poll.stop();
    m_appState.discoveredServers().stop();
}

void OnboardingModel::next() {
    if (m_step == totalSteps - 1) return finish();
    setStep(m_step + 1);
}

void OnboardingModel::back() {
    if (canGoBack()) setStep(m_step - 1);
}

void OnboardingModel::onServerCommitted() {
    if (m_step == serverStep) setStep(permissionsStep);
}

void OnboardingModel::setDoneReadiness(const DoneReadiness& readiness) {
    if (std::exchange(m_doneReadiness, readiness) != readiness) Q_EMIT changed();
}

void OnboardingModel::setStep(int step) {
    m_step = step;
    Config config = m_appState.config();
    config.onboardingStep = step;
    m_appState.setConfig(config);
    Q_EMIT stepChanged(step);
    Q_EMIT changed();
}

void OnboardingModel::finish() {
    Config config = m_appState.config();
    config.onboardingComplete = true;
    m_appState.setConfig(config);
    Q_EMIT finished();
}

}  // namespace quietlark
