#pragma once

#include "platform/key_capture.h"

namespace quietlark {

/// The keyboard without the presses that a capture field takes, so that the user can press a hotkey
/// there without setting it off. A modifier pressed for the field counts for nothing until it is
/// let go.
class UncapturedKeyEvents final : public KeyEventSource {
public:
    UncapturedKeyEvents(KeyEventSource& keyboard, const KeyCapture& capture)
        : m_keyboard(keyboard), m_capture(capture) {}

    [[nodiscard]] Cancellable addMonitor(Scope scope, KeyEventMask mask, Handler handler) override;
    [[nodiscard]] std::optional<Unavailable> unavailable() const override;

private:
    std::optional<KeyEvent> uncaptured(Scope scope, const KeyEvent& event);

    KeyEventSource& m_keyboard;
    const KeyCapture& m_capture;
    ModifierFlags m_held = 0;      ///< as of the last event
    ModifierFlags m_captured = 0;  ///< those of them that were pressed for the field
};

}  // namespace quietlark
