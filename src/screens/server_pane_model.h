#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include <QObject>
#include <QString>

#include "config/server_mode.h"
#include "screens/local_server_summary.h"
#include "state/app_state.h"
#include "transcription/endpoint_file.h"
#include "transcription/server_endpoint.h"
#include "transcription/server_resolver.h"

namespace quietlark {

/// What Preferences say of the chosen server. Looks only while it is shown. Main thread.
class ServerPaneModel final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds pollInterval{1000};
    static constexpr std::chrono::milliseconds probeInterval{5000};

    /// The server in one glance.
    struct Hero {
        QString symbol;
        QString title;
        QString subtitle;

        bool operator==(const Hero&) const = default;
    };

    ServerPaneModel(AppState& appState, ServerResolver& resolver, EndpointFile endpointFile,
                    Scheduler& scheduler);
    ~ServerPaneModel() override;

    /// Looks at the local server every second, and asks any server whether it answers, from
    /// appear() to disappear().
    void appear();
    void disappear();

    [[nodiscard]] Hero hero() const;

    /// The local server waits for the user.
    [[nodiscard]] bool showsFixUp() const;
    /// Shows where to let it run.
    void approve();

    /// The local server waits for its model, or lacks it.
    [[nodiscard]] bool showsDownload() const;
    [[nodiscard]] ModelDownloader& downloader() { return m_appState.modelDownloader(); }

    /// Whether the choice of another server is shown instead: where none is chosen, and where the
    /// user asks for it, until the pane disappears or a server is chosen, wherever that is done.
    [[nodiscard]] bool isEditing() const { return m_isEditing; }
    void setEditing(bool isEditing);

Q_SIGNALS:
    /// Any of the above may answer something else now.
    void changed();

private:
    void onConfig(const Config& config);
    [[nodiscard]] bool mustChoose() const;
    void probe();
    void look();
    [[nodiscard]] LocalServerStand stand() const;
    [[nodiscard]] Hero remoteHero(const QString& name, const QString& address) const;

    AppState& m_appState;
    ServerResolver& m_resolver;
    const EndpointFile m_endpointFile;
    Scheduler& m_scheduler;
    const ServerEndpoint m_serverEndpoint;
    ServerMode m_mode;
    LocalServerStand m_stand;  ///< as of the last look
    bool m_isEditing;
    std::optional<bool> m_remoteReachable;  ///< absent until the first answer
    std::unique_ptr<QObject> m_screen;      ///< while it is shown
    std::unique_ptr<QObject> m_probing;     ///< while somebody waits for the next probe
    Cancellable m_pollTimer;
    Cancellable m_probeTask;
};

}  // namespace quietlark
