#pragma once

#include "platform/key_capture.h"

namespace quietlark {

/// The keyboard without the presses that a capture field takes, so that the user can press a hotkey
/// there without setting it off.
class UncapturedKeyEvents final : public KeyEventSource {
public:
    UncapturedKeyEvents(KeyEventSource& keyboard, const KeyCapture& capture)
        : m_keyboard(keyboard), m_capture(capture) {}

    [[nodiscard]] Cancellable addMonitor(Scope scope, KeyEventMask mask, Handler handler) override;
    [[nodiscard]] std::optional<Unavailable> unavailable() const override;

private:
    KeyEventSource& m_keyboard;
    const KeyCapture& m_capture;
};

}  // namespace quietlark
