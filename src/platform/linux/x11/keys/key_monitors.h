#pragma once

#include <memory>
#include <vector>

#include "platform/key_event_source.h"

namespace quietlark {

/// The monitors of a key event source. Main thread.
class KeyMonitors {
public:
    /// The monitor lasts as long as the token; the token may outlive the monitors.
    [[nodiscard]] Cancellable add(KeyEventSource::Scope scope, KeyEventMask mask,
                                  KeyEventSource::Handler handler);

    /// Calls the monitors of the scope that want such an event, in the order in which they were
    /// added. A handler may add and remove monitors, itself among them.
    void report(KeyEventSource::Scope scope, const KeyEvent& event) const;

private:
    struct Monitor {
        KeyEventSource::Scope scope;
        KeyEventMask mask;
        KeyEventSource::Handler handler;
    };
    using Monitors = std::vector<std::weak_ptr<const Monitor>>;

    std::shared_ptr<Monitors> m_monitors = std::make_shared<Monitors>();
};

}  // namespace quietlark
