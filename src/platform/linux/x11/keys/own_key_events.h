#pragma once

#include <cstdint>
#include <deque>

#include "platform/linux/x11/keys/evdev_key_codes.h"

namespace quietlark {

/// One raw key event, or the request that makes the X server produce one.
struct RawKeyEvent {
    /// Number of the last request of this connection that the server had carried out.
    std::uint32_t sequence = 0;
    std::uint16_t device = 0;  ///< the keyboard that it came from, not the master it belongs to
    XKeycode keycode = 0;
    bool pressed = false;

    bool operator==(const RawKeyEvent&) const = default;
};

/// Tells the key events that this connection has caused from everybody else's.
///
/// The server carries out a fake key request at once, so the event that it causes is the first one
/// to bear that request's number. A request that causes no event is forgotten with the first event
/// that bears a later number: it cannot swallow a key that somebody really pressed.
class OwnKeyEvents {
public:
    /// An event that the request with its sequence number is about to cause.
    void expect(const RawKeyEvent& event) { m_expected.push_back(event); }

    /// Whether the event is one of ours. To be asked once for every event, in their order.
    [[nodiscard]] bool claim(const RawKeyEvent& event);

private:
    std::deque<RawKeyEvent> m_expected;
};

}  // namespace quietlark
