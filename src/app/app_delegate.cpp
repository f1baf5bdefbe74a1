#include "app/app_delegate.h"

#include <utility>

#include <QCoreApplication>
#include <QPointer>

#include "app/menus.h"

namespace quietlark {

AppDelegate::AppDelegate(AppState& appState, const Desktop& desktop, const Computer& computer,
                         NotificationCenter& notifications, Scheduler& scheduler)
    : m_appState(appState),
      m_desktop(desktop),
      m_keyboard(computer.keyboard),
      m_permissions(computer.permissions),
      m_notifications(notifications),
      m_scheduler(scheduler),
      m_bundle(computer.traces.installation, computer.traces.defaults),
      m_status(desktop.statusItem, appState, computer.permissions, scheduler),
      m_windows(desktop.windows, desktop.shell),
      m_registrar(appState.daemon(), m_bundle, m_status, m_windows),
      m_reconciler(appState, m_registrar, m_status, m_windows),
      m_watch(computer.permissions, appState.daemon(), scheduler),
      m_uninstall(appState, m_windows, computer.traces) {
    connect(&desktop.statusItem, &StatusItem::menuNeedsUpdate, this, &AppDelegate::refresh);
    connect(&desktop.statusItem, &StatusItem::chosen, this, &AppDelegate::perform);
    connect(&desktop.windows, &AppWindows::chosen, this, &AppDelegate::perform);
    connect(&desktop.windows, &AppWindows::onboardingFinished, this,
            &AppDelegate::finishOnboarding);
    connect(&m_watch, &PermissionsWatch::inputMonitoringGranted, this, &AppDelegate::reloadHotkeys);
    connect(&m_watch, &PermissionsWatch::permissionsLost, &m_windows,
            &WindowPresenter::showPermissionsAlert);
    connect(&m_watch, &PermissionsWatch::approvalRequired, this, &AppDelegate::onApprovalRequired);
    connect(&m_watch, &PermissionsWatch::approvalGiven, this,
            [this] { m_reconciler.onApproved(); });
    connect(&m_watch, &PermissionsWatch::ticked, this, &AppDelegate::refresh);
    connect(&m_uninstall, &Uninstall::confirmed, this, &AppDelegate::stop);
    connect(&m_uninstall, &Uninstall::finished, this, [this] { m_desktop.shell.terminate(); });
}

void AppDelegate::applicationDidFinishLaunching() {
    m_uninstall.prepare();
    m_desktop.windows.setMainMenu(buildMainMenu(QCoreApplication::applicationName()));
    m_desktop.statusItem.show();
    connect(&m_appState.dictation(), &Dictation::onStateChange, this, &AppDelegate::refresh);
    m_reconciler.noteServerMode();
    subscribe();
    connect(&m_notifications, &NotificationCenter::posted, this, &AppDelegate::onNotification);
    m_status.refresh();
    if (!m_bundle.isInApplications()) return m_windows.showMoveToApplicationsAlert();
    m_reconciler.performLaunchActions();
    reloadHotkeys();
    m_watch.start();
    showWhatIsMissing();
    m_watch.noteDaemonStatus();
}

void AppDelegate::subscribe() {
    m_configCancellable = m_appState.subscribeToConfig([this](const Config& config) {
        onMainQueue([this, config] {
            reloadHotkeys();
            m_reconciler.handleServerModeChange(config);
        });
    });
    const auto followDownload = [this](const ModelDownloader::State& state) {
        if (std::exchange(m_lastDownload, state) == state) return;
        onMainQueue([this] { m_status.refresh(); });
    };
    connect(&m_appState.modelDownloader(), &ModelDownloader::stateChanged, this, followDownload);
    followDownload(m_appState.modelDownloader().state());
}

void AppDelegate::showWhatIsMissing() {
    const Config& config = m_appState.config();
    if (!config.onboardingComplete) return m_windows.showOnboarding();
    if (!m_permissions.status().allGranted()) return m_windows.showPermissionsAlert();
    const bool needsChoice = std::holds_alternative<Unconfigured>(config.serverMode);
    const bool needsApproval = std::holds_alternative<Local>(config.serverMode) &&
                               m_appState.daemon().status() == ServiceStatus::requiresApproval;
    if (needsChoice || needsApproval) m_windows.openServerPane();
}

bool AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
    if (!hasVisibleWindows && !m_isStopped) m_windows.openPrefs();
    return true;
}

void AppDelegate::reloadHotkeys() {
    if (!m_hotkeys) m_hotkeys.emplace(m_appState.dictation(), m_keyboard, m_scheduler);
    const QStringList complaints = m_hotkeys->reload(m_appState.config());
    Q_EMIT hotkeysLoaded(*m_hotkeys, complaints);
}

void AppDelegate::uninstall() {
    m_uninstall.run();
}

void AppDelegate::stop() {
    m_isStopped = true;
    m_notifications.disconnect(this);
    m_status.stopTimers();
    m_watch.stop();
    m_registrar.callOff();
    m_configCancellable.cancel();
    m_hotkeys.reset();
}

void AppDelegate::refresh() {
    if (!m_isStopped) m_status.refresh();
}

void AppDelegate::onMainQueue(std::function<void()> action) {
    m_scheduler.post([alive = QPointer(this), action = std::move(action)] {
        if (alive && !alive->m_isStopped) action();
    });
}

void AppDelegate::onNotification(const QString& name) {
    if (name == notification::modelReady) m_reconciler.onModelReady();
    if (name == notification::uninstallRequested) uninstall();
    if (name == notification::registerDaemonRequested) m_registrar.registerDaemon();
}

void AppDelegate::onApprovalRequired() {
    const Config& config = m_appState.config();
    if (config.onboardingComplete && std::holds_alternative<Local>(config.serverMode)) {
        m_windows.openServerPane();
    }
}

void AppDelegate::finishOnboarding() {
    m_windows.closeOnboarding();
    m_permissions.requestMissing(m_permissions.status());
    reloadHotkeys();
}

void AppDelegate::perform(MenuAction action) {
    if (action == MenuAction::openPrefs && !m_isStopped) m_windows.openPrefs();
    if (action == MenuAction::terminate) m_desktop.shell.terminate();
}

}  // namespace quietlark
