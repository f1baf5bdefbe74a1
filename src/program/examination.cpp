#include "program/examination.h"

#include "hotkeys/hotkey_parse.h"
#include "platform/linux/journal/journal_log.h"
#include "program/own_traces.h"

namespace quietlark {

Examination::Examination(bool canShowWindows)
    : m_desktop([] { return false; }),
      m_pasteboard(m_desktop.scheduler),
      m_resolver(m_http),
      m_config(Config::load(Config::defaultFileURL())),
      m_serverAddress(configuredServer(Config::defaultFileURL(), m_config, m_endpointFile)) {
    m_desktop.localNetworkProbe();
    m_snapshot = m_pasteboard.snapshot([this](const std::optional<PasteboardSnapshot>& snapshot) {
        m_clipboardAnswers = snapshot.has_value();
    });
    if (canShowWindows) {
        m_trays.emplace();
        QObject::connect(&*m_trays, &TrayHosts::found, &*m_trays, [this] { m_hasTray = true; });
        m_trays->start();
    }
    if (!m_serverAddress) return;
    m_probe = m_resolver.resolveServer(
        *m_serverAddress, DoctorCommand::patience,
        [this](const std::optional<ResolvedServer>& server) { m_serverAnswers = bool(server); });
}

std::vector<DoctorCheck> Examination::checks() {
    const auto nothingMissing = [] { return std::optional<QString>(); };
    return {
        {tr("Microphone"), [this] { return missing(PrivacyGrant::Microphone); }},
        {tr("Hotkeys can be seen"), [this] { return missing(PrivacyGrant::InputMonitoring); }},
        {tr("Keys can be typed"), [this] { return missing(PrivacyGrant::Accessibility); }},
        {tr("Local network"), [this] { return localNetworkProblem(); }},
        {tr("Clipboard"), [this] { return clipboardProblem(); }},
        {tr("Session bus"), [this] { return sessionBusProblem(); }},
        {tr("Tray"), [this] { return trayProblem(); }},
        {tr("Local server’s service"), [this] { return serviceProblem(); }},
        {tr("Hotkey settings"), [this] { return hotkeyProblem(); }},
        {tr("Transcription server"), [this] { return serverProblem(); }},
        {tr("Launch at login"), nothingMissing, &Examination::launchAtLoginState},
        {tr("Log"), nothingMissing, &Examination::logState},
    };
}

std::optional<QString> Examination::missing(PrivacyGrant grant) const {
    if (const auto unavailable = m_desktop.privacy.missing(grant)) return unavailable->reason;
    return std::nullopt;
}

std::optional<QString> Examination::localNetworkProblem() {
    const LocalNetworkProbe& probe = m_desktop.localNetworkProbe();
    if (probe.granted()) return std::nullopt;
    if (const auto& unavailable = probe.unavailable()) return unavailable->reason;
    return tr("Avahi does not answer; see whether avahi-daemon runs.");
}

std::optional<QString> Examination::clipboardProblem() const {
    if (m_clipboardAnswers) return std::nullopt;
    return tr("There is no X server to share a clipboard on; run this within the desktop.");
}

std::optional<QString> Examination::trayProblem() const {
    if (m_hasTray) return std::nullopt;
    return tr("This desktop shows no icons of programs; start quietlark again to open its window.");
}

std::optional<QString> Examination::sessionBusProblem() const {
    if (m_desktop.sessionBus.isConnected()) return std::nullopt;
    return tr("There is none; start the desktop with one, such as by dbus-run-session.");
}

/// Who has chosen another server does not need it.
std::optional<QString> Examination::serviceProblem() const {
    if (!std::holds_alternative<Local>(m_config.serverMode)) return std::nullopt;
    switch (m_desktop.serverUnit.status()) {
        case ServiceStatus::enabled:
            return std::nullopt;
        case ServiceStatus::requiresApproval:
            return tr(
                "It is masked; allow it by “systemctl --user unmask "
                "net.quietlark.server.service”.");
        case ServiceStatus::notRegistered:
            return tr("It is not switched on; choose the server on this computer in Preferences.");
        case ServiceStatus::notFound:
            break;
    }
    return tr(
        "systemd does not know it for this user; install Quietlark, or choose another server.");
}

std::optional<QString> Examination::hotkeyProblem() const {
    for (const QString& spec : {m_config.hotkey, m_config.toggleHotkey}) {
        if (spec.isEmpty()) continue;
        if (const auto hotkey = HotkeyParse::parse(spec); !hotkey)
            return hotkey.error().localizedDescription();
    }
    if (!m_config.hotkey.isEmpty() || !m_config.toggleHotkey.isEmpty()) return std::nullopt;
    return tr("None is set; see “hotkey” in %1.").arg(Config::defaultFileURL());
}

std::optional<QString> Examination::serverProblem() const {
    if (m_serverAnswers) return std::nullopt;
    if (!m_serverAddress) return m_serverAddress.error();
    return tr("Nothing that Quietlark knows answers at %1.").arg(*m_serverAddress);
}

QString Examination::logState() {
    return JournalLog::hasJournal() ? tr("the journal")
                                    : tr("standard error, for there is no journal");
}

QString Examination::launchAtLoginState() {
    switch (OwnTraces(Config::defaultFileURL()).loginItem.status()) {
        case ServiceStatus::enabled:
            return tr("on");
        case ServiceStatus::requiresApproval:
            return tr("switched off in the desktop’s settings");
        case ServiceStatus::notRegistered:
        case ServiceStatus::notFound:
            break;
    }
    return tr("off");
}

}  // namespace quietlark
