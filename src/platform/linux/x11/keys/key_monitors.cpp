#include "platform/linux/x11/keys/key_monitors.h"

#include <utility>

namespace quietlark {

Cancellable KeyMonitors::add(KeyEventSource::Scope scope, KeyEventMask mask,
                             KeyEventSource::Handler handler) {
    auto monitor = std::make_shared<const Monitor>(Monitor{scope, mask, std::move(handler)});
    m_monitors->push_back(monitor);
    return Cancellable(
        [monitor = std::move(monitor), monitors = std::weak_ptr(m_monitors)]() mutable {
            monitor.reset();
            if (const auto alive = monitors.lock()) {
                std::erase_if(*alive, [](const auto& one) { return one.expired(); });
            }
        });
}

void KeyMonitors::report(KeyEventSource::Scope scope, const KeyEvent& event) const {
    const Monitors monitorsNow = *m_monitors;
    for (const auto& candidate : monitorsNow) {
        const auto monitor = candidate.lock();
        if (!monitor || monitor->scope != scope || (monitor->mask & maskOf(event.kind)) == 0)
            continue;
        monitor->handler(event);
    }
}

}  // namespace quietlark
