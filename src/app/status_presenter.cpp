#include "app/status_presenter.h"

#include "app/menus.h"

namespace quietlark {

StatusPresenter::StatusPresenter(StatusItem& statusItem, AppState& appState,
                                 const Permissions& permissions, Scheduler& scheduler)
    : m_statusItem(statusItem),
      m_appState(appState),
      m_permissions(permissions),
      m_scheduler(scheduler) {}

void StatusPresenter::refresh() {
    rebuildMenu();
    updateIcon();
    manageServerPollTimer();
}

void StatusPresenter::rebuildMenu() {
    m_statusItem.setMenu(statusMenu());
}

void StatusPresenter::updateIcon() {
    m_statusItem.setSymbol(symbolFor(facts()));
}

void StatusPresenter::manageServerPollTimer() {
    if (!awaitsServer()) {
        m_pollTimer.reset();
    } else if (!m_pollTimer) {
        m_pollTimer = m_scheduler.every(serverPollInterval, [this] { refresh(); });
    }

    if (!isAnimated()) {
        m_animTimer.reset();
        m_animIdx = 0;
    } else if (!m_animTimer) {
        m_animTimer = m_scheduler.every(frameInterval, [this] {
            ++m_animIdx;
            updateIcon();
        });
    }
}

void StatusPresenter::stopTimers() {
    m_pollTimer.reset();
    m_animTimer.reset();
}

StatusFacts StatusPresenter::facts() const {
    const Config& config = m_appState.config();
    const LocalServerConditions& server = m_appState.localServer();
    return {
        .onboardingComplete = config.onboardingComplete,
        .allPermissionsGranted = m_permissions.status().allGranted(),
        .isLocal = std::holds_alternative<Local>(config.serverMode),
        .modelIsInstalled = server.modelIsInstalled(),
        .serverIsStarting = server.serverIsStarting(),
        .serverNeedsApproval = server.serverNeedsApproval(),
        .serverIsStopped = server.serverIsStopped(),
        .dictation = m_appState.dictation().state().kind,
        .animIdx = m_animIdx,
    };
}

bool StatusPresenter::awaitsServer() const {
    return m_appState.daemon().status() == ServiceStatus::requiresApproval ||
           m_appState.localServer().serverIsStarting();
}

bool StatusPresenter::isAnimated() const {
    return m_appState.dictation().state().kind == DictationState::Case::transcribing ||
           m_appState.localServer().serverIsStarting();
}

}  // namespace quietlark
