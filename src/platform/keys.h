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
}

}  // namespace quietlark
