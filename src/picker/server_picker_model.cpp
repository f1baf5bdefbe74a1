#include "picker/server_picker_model.h"

#include <algorithm>
#include <variant>

#include "picker/manual_address.h"
#include "servers/server_ranker.h"
#include "state/app_state.h"

namespace quietlark {

ServerPickerModel::ServerPickerModel(AppState& appState, const ServerRanker& ranker,
                                     ServerResolver& resolver, Scheduler& scheduler,
                                     Options options)
    : m_appState(appState),
      m_ranker(ranker),
      m_options(options),
      m_probe(resolver, scheduler,
              {.willChange = [this] { Q_EMIT willChange(); },
               .changed = [this] { Q_EMIT changed(); }}) {
    const auto& servers = appState.discoveredServers();
    connect(&servers, &DiscoveredServers::remotesWillChange, this, &ServerPickerModel::willChange);
    connect(&servers, &DiscoveredServers::remotesChanged, this, &ServerPickerModel::changed);
}

void ServerPickerModel::setPhase(Phase phase) {
    publish(m_phase, phase);
}

void ServerPickerModel::setCardSelection(CardChoice choice) {
    publish(m_cardSelection, choice);
}

void ServerPickerModel::setListSelection(const std::optional<QString>& id) {
    publish(m_listSelection, id);
}

void ServerPickerModel::setManualHostPort(const QString& text) {
    if (text == m_manualHostPort) return;
    Q_EMIT willChange();
    m_manualHostPort = text;
    scheduleProbe();
    Q_EMIT changed();
}

void ServerPickerModel::onAppear() {
    if (m_selectionInitialized) return;
    m_selectionInitialized = true;
    setCardSelection(initialCardSelection());
}

void ServerPickerModel::onManualEntryAppear() {
    const auto* const remote = std::get_if<ManualRemote>(&m_appState.config().serverMode);
    if (m_manualHostPort.isEmpty() && remote) setManualHostPort(typedForm(*remote));
    scheduleProbe();
}

void ServerPickerModel::onManualEntryDisappear() {
    m_probe.cancel();
}

bool ServerPickerModel::canAdvance() const {
    switch (m_phase) {
        case Phase::cards:
            return true;
        case Phase::remoteList:
            return m_listSelection.has_value();
        case Phase::manualEntry:
            return manualProbe().kind == ProbeState::Case::ok;
    }
    return false;
}

bool ServerPickerModel::canConnect() const {
    if (m_phase == Phase::remoteList) return selectedRemote().has_value();
    return canAdvance() && (m_phase != Phase::manualEntry || m_probe.isUpToDate());
}

void ServerPickerModel::advance() {
    switch (m_phase) {
        case Phase::cards:
            if (m_cardSelection == CardChoice::local) return commitLocal();
            return setPhase(Phase::remoteList);
        case Phase::remoteList:
            return commitSelectedRemote();
        case Phase::manualEntry:
            return commitManualIfReady();
    }
}

void ServerPickerModel::commitLocal() {
    store(Local{});
    m_appState.modelDownloader().start();
    announceCommit();
}

void ServerPickerModel::commitSelectedRemote() {
    const auto remote = selectedRemote();
    if (!remote) return;
    store(DiscoveredRemote{remote->name, remote->host, remote->port});
    announceCommit();
}

void ServerPickerModel::commitManualIfReady() {
    const auto address = parsedManual();
    if (manualProbe().kind != ProbeState::Case::ok || !address) return;
    store(ManualRemote{address->host, address->port, address->scheme});
    announceCommit();
}

void ServerPickerModel::commitFinishLater() {
    store(Unconfigured{});
    announceCommit();
}

ServerPickerModel::WayOut ServerPickerModel::wayOut() const {
    if (m_phase != Phase::cards) return WayOut::back;
    if (m_options.offersCancel) return WayOut::cancel;
    return m_options.allowFinishLater ? WayOut::finishLater : WayOut::none;
}

void ServerPickerModel::leave() {
    switch (wayOut()) {
        case WayOut::none:
            return;
        case WayOut::back:
            return setPhase(Phase::cards);
        case WayOut::finishLater:
            return commitFinishLater();
        case WayOut::cancel:
            publish(m_cancelTick, m_cancelTick + 1);
            Q_EMIT cancelTickChanged(m_cancelTick);
    }
}

template <typename Field>
void ServerPickerModel::publish(Field& field, const Field& value) {
    if (value == field) return;
    Q_EMIT willChange();
    field = value;
    Q_EMIT changed();
}

ServerPickerModel::CardChoice ServerPickerModel::initialCardSelection() const {
    const ServerMode& mode = m_appState.config().serverMode;
    if (std::holds_alternative<Local>(mode)) return CardChoice::local;
    if (!std::holds_alternative<Unconfigured>(mode)) return CardChoice::network;
    const auto recommendation = m_ranker.rank(m_appState.discoveredServers().remotes());
    return std::holds_alternative<RecommendRemote>(recommendation) ? CardChoice::network
                                                                   : CardChoice::local;
}

std::optional<MDNSBrowser::Entry> ServerPickerModel::selectedRemote() const {
    const auto& remotes = m_appState.discoveredServers().remotes();
    const auto found = std::find_if(remotes.begin(), remotes.end(), [this](const auto& entry) {
        return entry.id() == m_listSelection;
    });
    if (found == remotes.end()) return std::nullopt;
    return *found;
}

std::optional<ManualAddress> ServerPickerModel::parsedManual() const {
    return ManualAddress::parse(m_manualHostPort);
}

void ServerPickerModel::scheduleProbe() {
    if (const auto address = parsedManual()) {
        m_probe.check(address->baseAddress());
    } else {
        m_probe.reset();
    }
}

void ServerPickerModel::store(const ServerMode& mode) {
    Config config = m_appState.config();
    config.serverMode = mode;
    m_appState.setConfig(config);
}

void ServerPickerModel::announceCommit() {
    publish(m_commitTick, m_commitTick + 1);
    Q_EMIT commitTickChanged(m_commitTick);
}

}  // namespace quietlark
