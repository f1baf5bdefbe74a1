#include "hotkeys/uncaptured_key_events.h"

#include <utility>

namespace quietlark {

Cancellable UncapturedKeyEvents::addMonitor(Scope scope, KeyEventMask mask, Handler handler) {
    return m_keyboard.addMonitor(
        scope, mask, [this, scope, handler = std::move(handler)](const KeyEvent& event) {
            if (const auto rest = uncaptured(scope, event)) handler(*rest);
        });
}

/// Each monitor asks for itself; asked again about the same event the answer is the same.
std::optional<KeyEvent> UncapturedKeyEvents::uncaptured(Scope scope, const KeyEvent& event) {
    const bool isCapturing = scope == Scope::Local && m_capture.holdsKeys();
    if (isCapturing) m_captured |= event.modifierFlags & ~m_held;
    m_captured &= event.modifierFlags;
    m_held = event.modifierFlags;
    if (isCapturing && event.kind == KeyEvent::Kind::KeyDown) return std::nullopt;
    KeyEvent rest = event;
    rest.modifierFlags &= ~m_captured;
    return rest;
}

std::optional<Unavailable> UncapturedKeyEvents::unavailable() const {
    return m_keyboard.unavailable();
}

}  // namespace quietlark
