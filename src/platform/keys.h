#pragma once

#include <cstdint>

namespace quietlark {

/// Modifier-flag bits, as macOS numbers them; every adapter translates to them at its edge.
using ModifierFlags = std::uint32_t;

namespace modifier {
inline constexpr ModifierFlags shift = 0x20000;
inline constexpr ModifierFlags control = 0x40000;
inline constexpr ModifierFlags option = 0x80000;
inline constexpr ModifierFlags command = 0x100000;
inline constexpr ModifierFlags function = 0x800000;
/// The modifiers that a hotkey looks at; Caps Lock and the rest are left out.
inline constexpr ModifierFlags relevant = shift | control | option | command | function;
}  // namespace modifier

/// Virtual key code, as macOS numbers them: a position on an ANSI keyboard, not a letter.
using KeyCode = std::uint16_t;

namespace key_code {
inline constexpr KeyCode v = 9;

inline constexpr KeyCode deleteBackward = 51;
inline constexpr KeyCode escape = 53;
inline constexpr KeyCode deleteForward = 117;

inline constexpr KeyCode rightCommand = 54;
inline constexpr KeyCode command = 55;
inline constexpr KeyCode shift = 56;
inline constexpr KeyCode capsLock = 57;
inline constexpr KeyCode option = 58;
inline constexpr KeyCode control = 59;
inline constexpr KeyCode rightShift = 60;
inline constexpr KeyCode rightOption = 61;
inline constexpr KeyCode rightControl = 62;
inline constexpr KeyCode function = 63;
}  // namespace key_code

/// Whether the key moves FlagsChanged events rather than KeyDown and KeyUp.
constexpr bool isModifierKey(KeyCode keyCode) {
    return keyCode >= key_code::rightCommand && keyCode <= key_code::function;
}

/// The flag that the key holds while it is down; 0 for Caps Lock and for ordinary keys.
constexpr ModifierFlags flagOfModifierKey(KeyCode keyCode) {
    switch (keyCode) {
        case key_code::shift:
        case key_code::rightShift:
            return modifier::shift;
        case key_code::control:
        case key_code::rightControl:
            return modifier::control;
        case key_code::option:
        case key_code::rightOption:
            return modifier::option;
        case key_code::command:
        case key_code::rightCommand:
            return modifier::command;
        case key_code::function:
            return modifier::function;
        default:
            return 0;
    }
}

}  // namespace quietlark
