#include "state/local_server_conditions.h"

#include <utility>

namespace quietlark {

LocalServerConditions::LocalServerConditions(const Config& config, const DaemonController& daemon,
                                             ModelFiles model, EndpointFile endpoint)
    : m_config(config),
      m_daemon(daemon),
      m_model(std::move(model)),
      m_endpoint(std::move(endpoint)) {}

bool LocalServerConditions::serverIsStarting() const {
    return isWanted() && m_daemon.status() == ServiceStatus::enabled && !m_endpoint.read();
}

bool LocalServerConditions::serverNeedsApproval() const {
    return isWanted() && m_config.onboardingComplete &&
           m_daemon.status() == ServiceStatus::requiresApproval;
}

bool LocalServerConditions::serverIsStopped() const {
    if (!isWanted()) return false;
    const ServiceStatus status = m_daemon.status();
    return status == ServiceStatus::notRegistered || status == ServiceStatus::notFound;
}

bool LocalServerConditions::isWanted() const {
    return std::holds_alternative<Local>(m_config.serverMode) && modelIsInstalled();
}

}  // namespace quietlark
