#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QString>

#include "config/config.h"
#include "dictation/dictation.h"
#include "local_server/daemon_controller.h"
#include "local_server/model_downloader.h"
#include "local_server/model_files.h"
#include "servers/discovered_servers.h"
#include "state/local_server_conditions.h"
#include "transcription/endpoint_file.h"

namespace quietlark {

/// What the windows, the status item and the application's reactions share. Main thread.
class AppState final : public QObject {
    Q_OBJECT

public:
    /// Where the state is read from; only `config` is written.
    struct Files {
        QString config;
        ModelFiles model;
        EndpointFile endpoint;
    };

    /// How each part is made, since most need adapters that are none of this floor's business.
    struct Makers {
        std::function<std::unique_ptr<DiscoveredServers>()> discoveredServers;
        std::function<std::unique_ptr<DaemonController>()> daemon;
        std::function<std::unique_ptr<ModelDownloader>()> modelDownloader;
        std::function<std::unique_ptr<Dictation>(Dictation::Settings)> dictation;
    };

    /// Makes the parts in the order of their accessors here, loading the settings in between;
    /// dictation waits until somebody wants it.
    AppState(Files files, Makers makers);

    [[nodiscard]] DiscoveredServers& discoveredServers() { return *m_discoveredServers; }
    [[nodiscard]] const Config& config() const { return m_config; }
    [[nodiscard]] DaemonController& daemon() { return *m_daemon; }
    [[nodiscard]] ModelDownloader& modelDownloader() { return *m_modelDownloader; }
    [[nodiscard]] Dictation& dictation();

    /// Where the state is kept.
    [[nodiscard]] const Files& files() const { return m_files; }

    [[nodiscard]] const LocalServerConditions& localServer() const { return m_localServer; }

    /// The way of every edit of the settings: puts `config` in place, tells the subscribers, has
    /// dictation forget its server if another was chosen, and saves. That saving failed is not
    /// reported: the settings then last as long as the program runs.
    void setConfig(const Config& config);

    /// Calls `onValue` with the present settings before it returns, and at every setConfig(), also
    /// of equal settings, until the handle is destroyed.
    [[nodiscard]] Cancellable subscribeToConfig(std::function<void(const Config&)> onValue);

Q_SIGNALS:
    /// At every setConfig(), once config() answers the new value.
    void configChanged(const quietlark::Config& config);

private:
    const Files m_files;
    const Makers m_makers;
    std::unique_ptr<DiscoveredServers> m_discoveredServers;
    Config m_config;
    std::unique_ptr<DaemonController> m_daemon;
    std::unique_ptr<ModelDownloader> m_modelDownloader;
    std::unique_ptr<Dictation> m_dictation;
    LocalServerConditions m_localServer;
};

}  // namespace quietlark
