#include "screens/done_step_model.h"

#include <utility>

#include "picker/network_text.h"
#include "screens/done_step_texts.h"

namespace quietlark {

namespace {

using Case = DoneReadiness::Case;

QString startingServer() {
    return DoneStepModel::tr("Starting transcription server…");
}

QString hostAndPort(const QString& host, std::int64_t port) {
    return QStringLiteral("%1:%2").arg(host, QString::number(port));
}

}  // namespace

DoneStepModel::DoneStepModel(AppState& appState, ServerResolver& resolver,
                             EndpointFile endpointFile, const HardwareProfile& hardware,
                             Scheduler& scheduler)
    : m_appState(appState),
      m_resolver(resolver),
      m_endpointFile(std::move(endpointFile)),
      m_hardware(hardware),
      m_scheduler(scheduler) {
    connect(&m_appState, &AppState::configChanged, this, &DoneStepModel::changed);
    connect(&m_appState.discoveredServers(), &DiscoveredServers::remotesChanged, this,
            &DoneStepModel::changed);
}

DoneStepModel::~DoneStepModel() = default;

void DoneStepModel::appear() {
    m_rtfPollTimer = m_scheduler.every(rtfInterval, [this] { pollRTF(); });
    // What is known of another server says nothing of this one.
    if (m_measuredMode != m_appState.config().serverMode) onReadiness({});
    m_measuredMode = m_appState.config().serverMode;
    probe();
}

void DoneStepModel::disappear() {
    m_rtfPollTimer.cancel();
    m_probeTask.cancel();
    m_probing.reset();
}

DoneStepModel::Content DoneStepModel::content() const {
    const bool isLocal = std::holds_alternative<Local>(m_appState.config().serverMode);
    switch (m_readiness.kind) {
        case Case::checking:
            return {.isBusy = true, .text = isLocal ? startingServer() : tr("Connecting…")};
        case Case::connecting:
            return {.isBusy = true, .text = m_readiness.message};
        case Case::downloading:
            return {.text = tr("Downloading the transcription model. This only happens once."),
                    .showsDownload = true};
        case Case::awaitingApproval:
            return {.symbol = QStringLiteral("gearshape"),
                    .title = tr("Approve the server"),
                    .text = tr("Quietlark Server needs your approval in System Settings → General "
                               "→ Login Items & Extensions. Toggle it on and we'll pick up from "
                               "there."),
                    .offersSettings = true};
        case Case::failed:
            return {.symbol = QStringLiteral("exclamationmark.triangle.fill"),
                    .title = tr("Can't reach the server"),
                    .text = m_readiness.message,
                    .hint = tr("Press Back to pick a different server.")};
        case Case::deferred:
            return {.symbol = QStringLiteral("clock.arrow.circlepath"),
                    .title = tr("Come back when you're ready"),
                    .text = tr("You skipped the server setup. Click the Quietlark icon in your "
                               "menu bar and choose Preferences → Server to finish setting up.")};
        case Case::ready:
            return readyContent();
    }
    return {};
}

void DoneStepModel::openSettings() {
    m_appState.daemon().openLoginItemsSettings();
}

void DoneStepModel::probe() {
    m_probeTask.cancel();
    m_probing = std::make_unique<QObject>();
    const ServerMode& mode = m_appState.config().serverMode;
    if (std::holds_alternative<Unconfigured>(mode)) return onReadiness({Case::deferred});
    if (std::holds_alternative<Local>(mode)) return probeLocal();
    if (const auto* remote = std::get_if<DiscoveredRemote>(&mode)) {
        const QString address = hostAndPort(remote->host, remote->port);
        return ask(QStringLiteral("http://") + address, remoteTimeout,
                   {Case::failed, tr("%1 isn't responding. It may be offline or on a different "
                                     "network.")
                                      .arg(shownAddress(remote->host, remote->port))});
    }
    const auto& remote = std::get<ManualRemote>(mode);
    const QString scheme = remote.scheme.isEmpty() ? QStringLiteral("http") : remote.scheme;
    const QString address = hostAndPort(remote.host, remote.port);
    ask(scheme + QStringLiteral("://") + address, remoteTimeout,
        {Case::failed, tr("%1 isn't responding.").arg(shownAddress(remote.host, remote.port))});
}

void DoneStepModel::probeLocal() {
    const DoneReadiness starting{Case::connecting, startingServer()};
    if (!m_appState.localServer().modelIsInstalled()) return onReadiness({Case::downloading});
    switch (m_appState.daemon().status()) {
        case ServiceStatus::enabled:
            if (const auto address = m_endpointFile.read())
                return ask(QStringLiteral("http://") + *address, localTimeout, starting);
            return onReadiness(starting);
        case ServiceStatus::requiresApproval:
            return onReadiness({Case::awaitingApproval});
        case ServiceStatus::notRegistered:
        case ServiceStatus::notFound:
            return onReadiness(starting);
    }
}

void DoneStepModel::ask(const QString& baseAddress, std::chrono::milliseconds timeout,
                        const DoneReadiness& otherwise) {
    m_probeTask = m_resolver.resolveServer(
        baseAddress, timeout, [this, otherwise](const std::optional<ResolvedServer>& server) {
            onReadiness(server ? DoneReadiness{Case::ready} : otherwise);
        });
}

void DoneStepModel::onReadiness(const DoneReadiness& readiness) {
    if (m_probing && !readiness.mayFinish())
        m_scheduler.after(probeInterval, m_probing.get(), [this] { probe(); });
    if (std::exchange(m_readiness, readiness) == readiness) return;
    Q_EMIT readinessChanged();
    Q_EMIT changed();
}

void DoneStepModel::pollRTF() {
    const auto rtf = m_endpointFile.readRTF();
    if (std::exchange(m_measuredRTF, rtf) != rtf) Q_EMIT changed();
}

std::optional<QString> DoneStepModel::slowMachineNote() const {
    const ServerMode& mode = m_appState.config().serverMode;
    if (std::holds_alternative<Local>(mode)) return slowLocalNote(m_measuredRTF);
    if (const auto* remote = std::get_if<DiscoveredRemote>(&mode))
        return slowRemoteNote(remote->instance, m_appState.discoveredServers().remotes(),
                              m_hardware);
    return std::nullopt;
}

DoneStepModel::Content DoneStepModel::readyContent() const {
    return {.symbol = QStringLiteral("checkmark.circle.fill"),
            .title = tr("You're all set!"),
            .text = tr("Try it out! Click the box, then %1 and speak.")
                        .arg(invocationHint(m_appState.config())),
            .note = slowMachineNote().value_or(QString()),
            .offersTrial = true};
}

}  // namespace quietlark
