#pragma once

#include <cstdint>
#include <memory>

#include <QByteArray>
#include <xcb/xcb.h>

namespace quietlark {

/// The keyboard that stands on the user's desk: not the one through which XTEST types, but the
/// device that the X server believes to be made of keys.
class DeviceKeyboard {
public:
    explicit DeviceKeyboard(const QByteArray& display);

    [[nodiscard]] std::uint16_t device() const { return m_device; }

    void press(std::uint8_t xKeycode) { move(xKeycode, true); }
    void release(std::uint8_t xKeycode) { move(xKeycode, false); }

    /// Whether the core keyboard, which applications see, has the key down.
    [[nodiscard]] bool isDown(std::uint8_t xKeycode) const;

    /// The core keyboard's modifiers, as in a key event's state.
    [[nodiscard]] std::uint8_t modifiers() const;

    /// Takes all keys for this program alone, as a menu or a screen locker does.
    void grab();

    /// The server does without the device from now on, as when its plug is pulled.
    void unplug();

    [[nodiscard]] xcb_connection_t* xcb() const { return m_connection.get(); }

private:
    void move(std::uint8_t xKeycode, bool pressed);
    /// Returns when the server has done everything, not merely been told.
    void finish() const;

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::uint8_t m_firstEvent = 0;
    std::uint8_t m_device = 0;
};

}  // namespace quietlark
