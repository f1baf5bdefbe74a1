#pragma once

#include <vector>

#include "platform/key_event_source.h"

namespace quietlark {

/// The monitors that one hotkey has installed: each event mask is watched for other applications
/// and for our own, since a hotkey works in both.
class HotkeyMonitors {
public:
    explicit HotkeyMonitors(KeyEventSource& source) : m_source(source) {}

    /// Installs a global and a local monitor for `mask`, both calling `handler`.
    void addMonitors(KeyEventMask mask, const KeyEventSource::Handler& handler);

    /// Removes them all; their handlers do not run any more.
    void removeAll();

private:
    KeyEventSource& m_source;
    std::vector<Cancellable> m_monitors;
    std::vector<Cancellable> m_localMonitors;
};

}  // namespace quietlark
