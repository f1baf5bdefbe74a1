#include "permissions/local_network_probe.h"

#include <utility>

namespace quietlark {

namespace {

/// What a state says about the grant; nothing when it leaves that as it was.
std::optional<bool> grantIn(BrowseState::Kind kind) {
    switch (kind) {
        case BrowseState::Kind::Ready:
            return true;
        case BrowseState::Kind::Waiting:
        case BrowseState::Kind::Failed:
        case BrowseState::Kind::Cancelled:
            return false;
        case BrowseState::Kind::Setup:
            break;
    }
    return std::nullopt;
}

}  // namespace

LocalNetworkProbe::LocalNetworkProbe(ServiceBrowserBackend& backend) {
    m_browse = backend.browse({.type = QStringLiteral("_whisper._tcp."), .domain = {}},
                              {.stateChanged = [this](const BrowseState& state) { follow(state); },
                               .found = {},
                               .removed = {}});
}

void LocalNetworkProbe::follow(const BrowseState& state) {
    const auto grant = grantIn(state.kind);
    if (!grant) return;
    m_unavailable.reset();
    if (!*grant && !state.reason.isEmpty()) m_unavailable = Unavailable{state.reason};
    if (std::exchange(m_granted, *grant) != *grant) Q_EMIT grantedChanged(m_granted);
}

}  // namespace quietlark
