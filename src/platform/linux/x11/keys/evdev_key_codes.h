#pragma once

#include <cstdint>
#include <optional>

#include "platform/keys.h"

namespace quietlark {

/// A key as X numbers it: the kernel's evdev code plus 8.
using XKeycode = std::uint8_t;

/// The macOS code of the key at the same place of the keyboard; absent when macOS has none.
[[nodiscard]] std::optional<KeyCode> keyCodeOf(XKeycode xKeycode);

/// The key at that place; where several have the code, the one that is in place on most keyboards.
[[nodiscard]] std::optional<XKeycode> xKeycodeOf(KeyCode keyCode);

/// The lower-case letter on an ANSI keyboard's key; 0 for keys that are not letters.
[[nodiscard]] char ansiLetterOf(KeyCode keyCode);

}  // namespace quietlark
