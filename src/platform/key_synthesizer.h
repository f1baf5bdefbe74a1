#pragma once

#include <optional>

#include <tl/expected.hpp>

#include "platform/keys.h"
#include "platform/unavailable.h"

namespace quietlark {

/// Types keys in the user's place.
class KeySynthesizer {
public:
    virtual ~KeySynthesizer() = default;

    /// Presses and releases one key with exactly `flags` as its modifiers, whatever else the user
    /// is holding. Command with the key V means the paste shortcut of the focused window. Returns
    /// once the events are on their way; Unavailable when none was posted. Main thread.
    [[nodiscard]] virtual tl::expected<void, Unavailable> post(KeyCode keyCode,
                                                               ModifierFlags flags) = 0;

    /// Why keys cannot be typed here at all, or nothing when they can.
    [[nodiscard]] virtual std::optional<Unavailable> unavailable() const = 0;
};

}  // namespace quietlark
