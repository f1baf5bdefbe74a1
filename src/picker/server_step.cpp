#include "picker/server_step.h"

#include <QHash>

#include "picker/network_text.h"
#include "picker/server_picker_model.h"
#include "platform/scheduler.h"
#include "servers/server_copy.h"
#include "servers/server_ranker.h"
#include "state/app_state.h"

namespace quietlark {

ServerStep::ServerStep(ServerPickerModel& model, AppState& appState, const ServerRanker& ranker,
                       Scheduler& scheduler)
    : m_appState(appState), m_ranker(ranker), m_scheduler(scheduler), m_model(model) {
    connect(&appState.discoveredServers(), &DiscoveredServers::remotesChanged, this,
            &ServerStep::changed);
    connect(&appState.modelDownloader(), &ModelDownloader::stateChanged, this,
            &ServerStep::changed);
}

ServerStep::~ServerStep() {
    disappear();
}

void ServerStep::appear() {
    if (m_screen) return;
    m_screen = std::make_unique<QObject>();
    m_initialScanIsDone = false;
    m_scheduler.after(initialScan, m_screen.get(), [this] { onInitialScanDone(); });
    m_appState.discoveredServers().start();
    m_model.onAppear();
    Q_EMIT changed();
}

void ServerStep::disappear() {
    if (!m_screen) return;
    m_screen.reset();
    m_appState.discoveredServers().stop();
}

QString ServerStep::localCardCopy() const {
    const auto& remotes = m_appState.discoveredServers().remotes();
    return ServerCopy::localCard(m_ranker.rank(remotes), remotes.size(),
                                 m_appState.localServer().modelIsInstalled());
}

QString ServerStep::networkCardCopy() const {
    const auto& remotes = m_appState.discoveredServers().remotes();
    return ServerCopy::networkCard(m_ranker.rank(remotes), remotes.size(), m_initialScanIsDone);
}

std::vector<ServerRow> ServerStep::rows() const {
    std::vector<ServerRow> rows;
    QHash<QString, int> rowsOfName;
    for (const MDNSBrowser::Entry& entry : m_appState.discoveredServers().remotes()) {
        const QString name = shownServerName(entry.name, entry.host, entry.port);
        const auto hint = m_ranker.speedHint(entry);
        ++rowsOfName[name];
        rows.push_back({entry.id(), name, shownAddress(entry.host, entry.port),
                        hint ? ServerCopy::hint(*hint) : QString()});
    }
    for (ServerRow& row : rows) {
        if (rowsOfName[row.name] > 1 && row.name != row.address) row.detail = row.address;
    }
    return rows;
}

void ServerStep::onInitialScanDone() {
    m_initialScanIsDone = true;
    Q_EMIT changed();
}

}  // namespace quietlark
