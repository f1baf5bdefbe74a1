#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include <QByteArray>
#include <xcb/xcb.h>

namespace quietlark::benchmark {

using Clock = std::chrono::steady_clock;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

/// X keycodes of the keys that the measurements use, with the usual evdev numbering.
namespace x_keycode {
inline constexpr std::uint8_t controlLeft = 37;
inline constexpr std::uint8_t altLeft = 64;
inline constexpr std::uint8_t space = 65;
inline constexpr std::uint8_t v = 55;
}  // namespace x_keycode

/// Moves keys, as a user's fingers would.
class Fingers {
public:
    explicit Fingers(const QByteArray& display);

    void press(std::uint8_t keycode) { move(XCB_KEY_PRESS, keycode); }
    void release(std::uint8_t keycode) { move(XCB_KEY_RELEASE, keycode); }

private:
    void move(std::uint8_t type, std::uint8_t keycode);

    Connection m_connection;
};

/// Sees every movement of a key, on a thread of its own, without any layer in between: the least
/// that observing the keyboard can cost.
class KeyWatcher {
public:
    using Handler = std::function<void(bool isPress, std::uint8_t keycode, Clock::time_point)>;

    KeyWatcher(const QByteArray& display, Handler handler);
    ~KeyWatcher();

private:
    void watch();

    Handler m_handler;
    Connection m_connection;
    std::atomic<bool> m_ending = false;
    std::thread m_thread;
};

}  // namespace quietlark::benchmark
