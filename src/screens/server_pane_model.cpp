#include "screens/server_pane_model.h"

#include <utility>

#include "picker/network_text.h"

namespace quietlark {

ServerPaneModel::ServerPaneModel(AppState& appState, ServerResolver& resolver,
                                 EndpointFile endpointFile, Scheduler& scheduler)
    : m_appState(appState),
      m_resolver(resolver),
      m_endpointFile(std::move(endpointFile)),
      m_scheduler(scheduler),
      m_serverEndpoint(m_endpointFile),
      m_mode(appState.config().serverMode),
      m_stand(stand()),
      m_isEditing(mustChoose()) {
    connect(&m_appState, &AppState::configChanged, this, &ServerPaneModel::onConfig);
    connect(&m_appState.modelDownloader(), &ModelDownloader::stateChanged, this,
            &ServerPaneModel::look);
    connect(&m_appState.modelDownloader(), &ModelDownloader::progressChanged, this,
            &ServerPaneModel::look);
}

ServerPaneModel::~ServerPaneModel() = default;

void ServerPaneModel::appear() {
    m_screen = std::make_unique<QObject>();
    m_pollTimer = m_scheduler.every(pollInterval, [this] { look(); });
    look();
    probe();
}

void ServerPaneModel::disappear() {
    m_pollTimer.cancel();
    m_probeTask.cancel();
    m_probing.reset();
    m_screen.reset();
    setEditing(mustChoose());
}

ServerPaneModel::Hero ServerPaneModel::hero() const {
    if (const auto* remote = std::get_if<DiscoveredRemote>(&m_mode))
        return remoteHero(shownServerName(remote->instance, remote->host, remote->port),
                          shownAddress(remote->host, remote->port));
    if (const auto* remote = std::get_if<ManualRemote>(&m_mode)) {
        const QString address = shownAddress(remote->host, remote->port);
        return remoteHero(address, address);
    }
    if (std::holds_alternative<Unconfigured>(m_mode))
        return {QStringLiteral("network"), tr("No server chosen"),
                tr("Choose where Quietlark should transcribe.")};
    return {QStringLiteral("desktopcomputer"), localTitle(m_stand), localDetails(m_stand)};
}

bool ServerPaneModel::showsFixUp() const {
    return std::holds_alternative<Local>(m_mode) && needsApproval(m_stand);
}

bool ServerPaneModel::showsDownload() const {
    return std::holds_alternative<Local>(m_mode) && needsDownload(m_stand);
}

void ServerPaneModel::approve() {
    m_appState.daemon().openLoginItemsSettings();
}

void ServerPaneModel::setEditing(bool isEditing) {
    if (std::exchange(m_isEditing, isEditing) != isEditing) Q_EMIT changed();
}

void ServerPaneModel::onConfig(const Config& config) {
    if (std::exchange(m_mode, config.serverMode) == config.serverMode) return;
    m_remoteReachable.reset();
    if (m_screen) probe();
    look();
    // A choice that goes on does so from its beginning: the one before stood for another server.
    setEditing(false);
    setEditing(mustChoose());
}

bool ServerPaneModel::mustChoose() const {
    return std::holds_alternative<Unconfigured>(m_mode);
}

void ServerPaneModel::probe() {
    // The next round does not begin before the answer, however long that takes.
    m_probing = std::make_unique<QObject>();
    const auto finish = [this](bool isReachable) {
        m_remoteReachable = isReachable;
        m_scheduler.after(probeInterval, m_probing.get(), [this] { probe(); });
        Q_EMIT changed();
    };
    const auto address = m_serverEndpoint.baseURL(m_mode);
    if (!address) return finish(false);
    m_probeTask = m_resolver.resolveServer(
        *address, ServerResolver::usualTimeout,
        [finish](const std::optional<ResolvedServer>& server) { finish(server.has_value()); });
}

void ServerPaneModel::look() {
    m_stand = stand();
    Q_EMIT changed();
}

LocalServerStand ServerPaneModel::stand() const {
    const ModelDownloader& downloader = m_appState.modelDownloader();
    return {m_appState.localServer().modelIsInstalled(),
            downloader.state(),
            downloader.progress(),
            m_appState.daemon().status(),
            m_endpointFile.read().has_value(),
            m_endpointFile.readDisplay()};
}

ServerPaneModel::Hero ServerPaneModel::remoteHero(const QString& name,
                                                  const QString& address) const {
    const QString symbol = QStringLiteral("network");
    if (!m_remoteReachable) return {symbol, tr("Connecting…"), address};
    if (!*m_remoteReachable)
        return {symbol, tr("Not connected"), tr("Attempting to reach %1").arg(address)};
    return {symbol, tr("Connected to %1").arg(name), name == address ? QString() : address};
}

}  // namespace quietlark
