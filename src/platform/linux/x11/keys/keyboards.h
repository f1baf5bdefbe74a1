#pragma once

#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

#include "platform/linux/x11/keys/evdev_key_codes.h"

struct xcb_connection_t;

namespace quietlark {

/// A key of one of several keyboards.
struct DeviceKey {
    std::uint16_t device = 0;
    XKeycode keycode = 0;

    bool operator==(const DeviceKey&) const = default;
    friend bool operator<(const DeviceKey& one, const DeviceKey& other) {
        return std::tie(one.device, one.keycode) < std::tie(other.device, other.keycode);
    }
};

/// The keyboards of an X server at one moment.
struct Keyboards {
    std::uint16_t xtestDevice = 0;  ///< the one for faked keys
    std::vector<DeviceKey> down;    ///< what is held on any of them, faked keys included
};

/// What keys pressed earlier have left behind on the core keyboard, and what the held ones add.
struct KeyboardState {
    std::uint32_t layout = 0;        ///< in effect now
    std::uint32_t lockedLayout = 0;  ///< in effect when no key is held
    std::int16_t latchedLayout = 0;  ///< how many further, for the next key
    std::uint8_t latched = 0;        ///< real modifiers that the next key will have
    std::uint8_t locked = 0;         ///< real modifiers that all keys have
};

/// Asks the server, in two round trips; absent when it does not answer or has no such keyboard.
[[nodiscard]] std::optional<Keyboards> queryKeyboards(xcb_connection_t* connection);

/// Asks the server, in one round trip; absent when it does not answer.
[[nodiscard]] std::optional<KeyboardState> queryKeyboardState(xcb_connection_t* connection);

/// Makes the latches what they are in `state`, and of the locked modifiers those that are in
/// `mask`.
void setLatchesAndLocks(xcb_connection_t* connection, const KeyboardState& state,
                        std::uint8_t mask);

}  // namespace quietlark
