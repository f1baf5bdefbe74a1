#pragma once

#include "platform/cancellable.h"
#include "platform/key_event_source.h"

namespace quietlark {

/// Takes key presses away from the windows of this application. Main thread.
class KeyCapture {
public:
    using Handler = KeyEventSource::Handler;

    virtual ~KeyCapture() = default;

    /// Passes each key-down event bound for a window of this application to `handler` instead,
    /// until the token is destroyed. Modifier keys by themselves and auto-repeats go nowhere. Only
    /// the newest capture gets keys.
    [[nodiscard]] virtual Cancellable capture(Handler handler) = 0;

    /// Whether a capture is under way, or a key that one has taken is still down.
    [[nodiscard]] virtual bool holdsKeys() const = 0;
};

}  // namespace quietlark
