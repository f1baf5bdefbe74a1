#pragma once

#include <optional>
#include <vector>

#include "platform/linux/x11/keys/keyboards.h"
#include "platform/linux/x11/keys/x11_keymap.h"

namespace quietlark {

/// The kinds of windows that paste by different keys.
enum class WindowKind {
    ordinary,
    terminal,
    primaryTerminal,       ///< its Shift-Insert pastes PRIMARY, which has what is to be pasted
    otherPrimaryTerminal,  ///< its Shift-Insert pastes PRIMARY, which has something else
};

/// A key with the modifiers that an application is to see with it.
struct Shortcut {
    XKeycode key = 0;
    RealModifiers modifiers = 0;
};

/// What the keymap has for a macOS shortcut; absent when it has no such key.
///
/// Command becomes Control. A letter's key is the one that types it in `layout`, or else in another
/// layout of the keymap, where GTK, Qt and VTE look as well; or else the letter's place. Where
/// nothing types V, Command-V becomes Shift-Insert, because these toolkits then know no Control-V.
/// In a terminal Command becomes Control and Shift. In one that pastes PRIMARY, Command-V is
/// Shift-Insert where that has what is to be pasted, and no key with Insert where it does not.
[[nodiscard]] std::optional<Shortcut> findShortcut(const X11Keymap& keymap,
                                                   X11Keymap::Layout layout, KeyCode keyCode,
                                                   ModifierFlags flags, WindowKind window);

/// How to type a shortcut whatever the user is holding.
struct KeystrokePlan {
    struct Move {
        DeviceKey key;
        bool pressed = false;
    };
    std::vector<Move> before;       ///< makes the modifiers right
    DeviceKey key;                  ///< to be pressed and released
    std::vector<Move> after;        ///< makes them what the user holds
    std::vector<DeviceKey> lifted;  ///< keys that `before` lifts and `after` puts back
    RealModifiers unlocked = 0;     ///< locks to be undone between `before` and `after`
};

/// Absent when the keymap has no keys for the modifiers.
[[nodiscard]] std::optional<KeystrokePlan> planKeystroke(const X11Keymap& keymap,
                                                         const KeyboardState& state,
                                                         const Keyboards& keyboards,
                                                         const Shortcut& shortcut);

}  // namespace quietlark
