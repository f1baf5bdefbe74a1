#include "state/app_state.h"

#include <utility>

namespace quietlark {

AppState::AppState(Files files, Makers makers)
    : m_files(std::move(files)),
      m_makers(std::move(makers)),
      m_discoveredServers(m_makers.discoveredServers()),
      m_config(Config::load(m_files.config)),
      m_daemon(m_makers.daemon()),
      m_modelDownloader(m_makers.modelDownloader()),
      m_localServer(m_config, *m_daemon, m_files.model, m_files.endpoint) {}

Dictation& AppState::dictation() {
    if (!m_dictation) m_dictation = m_makers.dictation([this] { return m_config; });
    return *m_dictation;
}

void AppState::setConfig(const Config& config) {
    const bool otherServer = config.serverMode != m_config.serverMode;
    m_config = config;
    Q_EMIT configChanged(m_config);
    if (otherServer && m_dictation) m_dictation->invalidateCache();
    // Not `config`: a subscriber may have edited the settings further.
    static_cast<void>(m_config.save(m_files.config));
}

Cancellable AppState::subscribeToConfig(std::function<void(const Config&)> onValue) {
    const auto connection = connect(this, &AppState::configChanged, this, onValue);
    onValue(m_config);
    return Cancellable([connection] { disconnect(connection); });
}

}  // namespace quietlark
