#pragma once

#include <optional>

#include <QObject>

#include "platform/cancellable.h"
#include "platform/service_browser_backend.h"
#include "platform/unavailable.h"

namespace quietlark {

/// Whether this program may use the local network. No system says so when asked; it is inferred
/// from how a browse of its own fares, which runs as long as the probe lives. Main thread.
class LocalNetworkProbe final : public QObject {
    Q_OBJECT

public:
    explicit LocalNetworkProbe(ServiceBrowserBackend& backend);

    /// False until the browse has first been running.
    [[nodiscard]] bool granted() const { return m_granted; }

    /// Why it is not granted, as far as the system has said; nothing while it is.
    [[nodiscard]] const std::optional<Unavailable>& unavailable() const { return m_unavailable; }

Q_SIGNALS:
    /// Only when granted() differs from before.
    void grantedChanged(bool granted);

private:
    void follow(const BrowseState& state);

    bool m_granted = false;
    std::optional<Unavailable> m_unavailable;
    Cancellable m_browse;
};

}  // namespace quietlark
