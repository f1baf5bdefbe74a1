#include "hotkeys/hotkey_monitors.h"

namespace quietlark {

void HotkeyMonitors::addMonitors(KeyEventMask mask, const KeyEventSource::Handler& handler) {
    using Scope = KeyEventSource::Scope;
    m_monitors.push_back(m_source.addMonitor(Scope::Global, mask, handler));
    m_localMonitors.push_back(m_source.addMonitor(Scope::Local, mask, handler));
}

void HotkeyMonitors::removeAll() {
    m_monitors.clear();
    m_localMonitors.clear();
}

}  // namespace quietlark
