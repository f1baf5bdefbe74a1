#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/cancellable.h"
#include "platform/keys.h"
#include "platform/unavailable.h"

namespace quietlark {

/// One event of the keyboard, observed and not consumed.
struct KeyEvent {
    enum class Kind { KeyDown, KeyUp, FlagsChanged };

    Kind kind = Kind::KeyDown;
    KeyCode keyCode = 0;              ///< the key that moved; a modifier's own code in FlagsChanged
    ModifierFlags modifierFlags = 0;  ///< what is held after the event

    bool operator==(const KeyEvent&) const = default;
};

/// Which kinds of event a monitor wants, one bit each.
using KeyEventMask = std::uint32_t;

namespace key_event_mask {
inline constexpr KeyEventMask keyDown = 1u << 10;
inline constexpr KeyEventMask keyUp = 1u << 11;
inline constexpr KeyEventMask flagsChanged = 1u << 12;
}  // namespace key_event_mask

/// The bit of a kind.
[[nodiscard]] constexpr KeyEventMask maskOf(KeyEvent::Kind kind) {
    switch (kind) {
        case KeyEvent::Kind::KeyDown:
            return key_event_mask::keyDown;
        case KeyEvent::Kind::KeyUp:
            return key_event_mask::keyUp;
        case KeyEvent::Kind::FlagsChanged:
            return key_event_mask::flagsChanged;
    }
    return 0;
}

/// Lets the program watch the keyboard. The keystrokes still reach their application; the ones that
/// this program synthesises are not reported.
class KeyEventSource {
public:
    enum class Scope {
        Global,  ///< events bound for other applications
        Local,   ///< events bound for a window of this application
    };
    using Handler = std::function<void(const KeyEvent&)>;

    virtual ~KeyEventSource() = default;

    /// Calls `handler` on the main thread for each matching event, in the order they happened,
    /// until the returned token is destroyed. Where keys cannot be observed it is never called.
    [[nodiscard]] virtual Cancellable addMonitor(Scope scope, KeyEventMask mask,
                                                 Handler handler) = 0;

    /// Why keys cannot be observed, or nothing when they can.
    [[nodiscard]] virtual std::optional<Unavailable> unavailable() const = 0;
};

}  // namespace quietlark
