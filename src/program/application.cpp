#include "program/application.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include <QApplication>
#include <QProcessEnvironment>

#include "local_server/model_source.h"
#include "platform/curl/curl_http_streams.h"
#include "platform/linux/session_bus/desktop_notification.h"
#include "platform/linux/x11/keys/evdev_key_codes.h"
#include "program/display.h"

namespace quietlark {

namespace {

AppState::Files stateFiles() {
    return {Config::defaultFileURL(), ModelFiles::atDefaultDirectory(), EndpointFile()};
}

/// What the user can do now, such as "hold ctrl+alt+space to dictate".
QString invitation(const Config& config, const DictationHotkeys& hotkeys) {
    QStringList ways;
    if (hotkeys.hasHold()) ways << Application::tr("hold %1").arg(config.hotkey);
    if (hotkeys.hasToggle()) ways << Application::tr("press %1").arg(config.toggleHotkey);
    return Application::tr("ready: %1 to dictate").arg(ways.join(Application::tr(" or ")));
}

/// Qt passes the window system's own number of a key on.
std::optional<KeyCode> keyCodeOfNative(quint32 nativeScanCode) {
    if (nativeScanCode > std::numeric_limits<XKeycode>::max()) return std::nullopt;
    return keyCodeOf(static_cast<XKeycode>(nativeScanCode));
}

}  // namespace

Application::Application(SessionBusService& service, Console& console)
    : m_console(console),
      m_service(service),
      m_desktop([] { return QApplication::activeWindow() != nullptr; }),
      m_log("net.quietlark.app", "dictation"),
      m_pasteboard(m_desktop.scheduler),
      m_transcription{ServerEndpoint(m_endpointFile), ServerResolver(m_http),
                      TranscriptionClient(m_http, m_desktop.scheduler, m_log)},
      m_recorder(Dictation::sampleRateHz, m_desktop.microphone),
      m_keys(m_desktop.keys),
      m_paster(m_pasteboard, m_keys, m_desktop.scheduler),
      m_modelFetcher(ModelSource::configured(QProcessEnvironment::systemEnvironment()),
                     ModelFiles::atDefaultDirectory(), m_desktop.scheduler, m_worker.scheduler(),
                     [] { return std::make_unique<CurlHttpStreams>(); }),
      m_state(stateFiles(), makers()),
      m_statusItem(m_desktop.scheduler),
      m_keyCapture(keyCodeOfNative),
      m_keyboard(m_desktop.keyboard, m_keyCapture),
      m_windowParts(m_state, m_transcription.resolver,
                    {m_desktop, m_keyCapture, m_traces.loginItem}, m_notifications),
      m_windows(m_windowParts.contents()),
      m_gate(m_desktop.scheduler) {
    connect(&m_desktop.keyConnection, &X11KeyConnection::displayLost, this,
            &Application::endWithoutDisplay);
    connect(&m_quitSignals, &QuitSignals::quitRequested, qApp, &QCoreApplication::quit);
    connect(&m_state.dictation(), &Dictation::onStateChange, this, &Application::report);
    connect(&m_windowParts, &WindowParts::onboardingFinished, &m_windows,
            &AppWindows::onboardingFinished);
    connect(&m_windowParts, &WindowParts::allPermissionsGranted, &m_windows,
            &AppWindows::allPermissionsGranted);
    connect(&m_statusItem, &TrayStatusItem::noTray, this, &Application::sayThereIsNoTray);
    connect(&m_service, &SessionBusService::reopenRequested, this, &Application::reopen);
    m_gate.wait([this] { return m_desktop.isKnown(); }, [this] { launch(); });
}

DictationReport Application::carryOut(DictationOrder order) {
    Dictation& dictation = m_state.dictation();
    switch (order) {
        case DictationOrder::start:
            dictation.beginRecord();
            break;
        case DictationOrder::stop:
            dictation.endRecord();
            break;
        case DictationOrder::toggle:
            dictation.toggle();
            break;
        case DictationOrder::status:
            break;
    }
    return {nameOf(dictation.state().kind), dictation.state().message};
}

AppState::Makers Application::makers() {
    return {[this] {
                return std::make_unique<DiscoveredServers>(
                    m_desktop.network, m_desktop.localHostName, m_desktop.scheduler);
            },
            [this] {
                return std::make_unique<DaemonController>(m_desktop.serverUnit, m_desktop.settings,
                                                          m_desktop.scheduler);
            },
            [this] {
                return std::make_unique<ModelDownloader>(ModelFiles::atDefaultDirectory(),
                                                         m_modelFetcher, m_notifications,
                                                         m_desktop.scheduler);
            },
            [this](Dictation::Settings settings) {
                return std::make_unique<Dictation>(std::move(settings), m_recorder, m_transcription,
                                                   m_paster, m_desktop.scheduler);
            }};
}

void Application::launch() {
    // Not before, because it compares with what it has found of the desktop first.
    m_delegate.emplace(
        m_state, AppDelegate::Desktop{m_statusItem, m_windows, m_shell},
        AppDelegate::Computer{m_keyboard, m_desktop.permissions, m_traces.computer()},
        m_notifications, m_desktop.scheduler);
    connect(&*m_delegate, &AppDelegate::hotkeysLoaded, this, &Application::sayHow);
    m_delegate->applicationDidFinishLaunching();
    if (m_reopenIsDue) reopen();
    const auto explanations = m_desktop.permissions.explanations();
    for (const auto& explanation : {explanations.microphone, explanations.inputMonitoring,
                                    explanations.accessibility, explanations.localNetwork}) {
        if (explanation) m_console.complain(*explanation);
    }
}

void Application::reopen() {
    m_reopenIsDue = !m_delegate;
    if (!m_delegate) return;
    m_delegate->applicationShouldHandleReopen(m_windows.isAnyVisible() || m_shell.isAlertVisible());
}

void Application::sayHow(const DictationHotkeys& hotkeys, const QStringList& complaints) {
    for (const QString& complaint : complaints)
        m_console.complain(complaint);
    const bool isReady = hotkeys.hasHold() || hotkeys.hasToggle();
    const QString how = isReady ? invitation(m_state.config(), hotkeys)
                                : tr("There is no hotkey to dictate with: see \"hotkey\" in %1.")
                                      .arg(Config::defaultFileURL());
    // The hotkeys are loaded more often than they change.
    if (how == std::exchange(m_saidHow, how)) return;
    if (isReady)
        (void)m_console.print(how);
    else
        m_console.complain(how);
}

void Application::sayThereIsNoTray() {
    const QString message =
        tr("This desktop has no tray for the icon. Start quietlark again to open its window.");
    m_notification = notifyUser(m_desktop.sessionBus, QStringLiteral("Quietlark"), message,
                                [this, message] { m_console.complain(message); });
}

void Application::report(const DictationState& state) {
    m_service.announce({nameOf(state.kind), state.message});
    if (!state.message.isEmpty()) m_console.complain(state.message);
}

void Application::endWithoutDisplay() {
    sayDisplayIsLost();
    QCoreApplication::exit(EXIT_FAILURE);
}

}  // namespace quietlark
