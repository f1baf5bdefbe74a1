#include "hotkeys/uncaptured_key_events.h"

#include <utility>

namespace quietlark {

Cancellable UncapturedKeyEvents::addMonitor(Scope scope, KeyEventMask mask, Handler handler) {
    return m_keyboard.addMonitor(
        scope, mask, [this, scope, handler = std::move(handler)](const KeyEvent& event) {
            const bool isTaken = scope == Scope::Local && event.kind == KeyEvent::Kind::KeyDown &&
                                 m_capture.holdsKeys();
            if (!isTaken) handler(event);
        });
}

std::optional<Unavailable> UncapturedKeyEvents::unavailable() const {
    return m_keyboard.unavailable();
}

}  // namespace quietlark
