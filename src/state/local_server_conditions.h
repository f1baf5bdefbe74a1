#pragma once

#include "config/config.h"
#include "local_server/daemon_controller.h"
#include "local_server/model_files.h"
#include "transcription/endpoint_file.h"

namespace quietlark {

/// How the server on this computer stands, derived anew at each call. Every serverX() is false
/// unless the user has chosen that server and its model is installed. Main thread.
class LocalServerConditions {
public:
    /// Follows `config` and `daemon`, which must outlive it.
    LocalServerConditions(const Config& config, const DaemonController& daemon, ModelFiles model,
                          EndpointFile endpoint);

    [[nodiscard]] bool modelIsInstalled() const { return m_model.isInstalled(); }

    /// Allowed to run, but it has not said yet where it can be reached.
    [[nodiscard]] bool serverIsStarting() const;

    /// Only the user can let it run; not before the onboarding is complete, which asks by itself.
    [[nodiscard]] bool serverNeedsApproval() const;

    /// Not set up.
    [[nodiscard]] bool serverIsStopped() const;

private:
    [[nodiscard]] bool isWanted() const;

    const Config& m_config;
    const DaemonController& m_daemon;
    const ModelFiles m_model;
    const EndpointFile m_endpoint;
};

}  // namespace quietlark
