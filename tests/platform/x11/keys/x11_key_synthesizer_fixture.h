#pragma once

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include "peers/x_server.h"
#include "platform/linux/x11/keys/x11_key_synthesizer.h"
#include "platform/x11/keys/device_keyboard.h"
#include "platform/x11/keys/key_window.h"
#include "platform/x11/keys/print_key_event.h"
#include "support/wait.h"

namespace quietlark {

inline constexpr std::uint16_t shift = XCB_MOD_MASK_SHIFT;
inline constexpr std::uint16_t lock = XCB_MOD_MASK_LOCK;
inline constexpr std::uint16_t control = XCB_MOD_MASK_CONTROL;
inline constexpr std::uint16_t numLock = XCB_MOD_MASK_2;
// What the server makes of the second layout for a program that does not speak XKB.
inline constexpr std::uint16_t secondLayout = XCB_MOD_MASK_5;

inline XKeycode x(int evdev) {
    return static_cast<XKeycode>(evdev + 8);
}

/// A user with a hand on the keyboard, a window to type into, and this program.
class X11KeySynthesizerTest : public ::testing::Test {
protected:
    void SetUp() override { m_window.takeFocus(); }

    tl::expected<void, Unavailable> paste() {
        return m_synthesizer.post(key_code::v, modifier::command);
    }

    void press(int evdev) { m_keyboard.press(x(evdev)); }
    void release(int evdev) { m_keyboard.release(x(evdev)); }
    void setxkbmap(const QStringList& arguments) {
        m_server.run(QStringLiteral("setxkbmap"), arguments);
    }
    void xdotool(const QStringList& arguments) {
        m_server.run(QStringLiteral("xdotool"), arguments);
    }

    /// The window has been typed this key into, with these modifiers, and nothing else.
    void expectTyped(int evdev, std::uint16_t state) {
        EXPECT_EQ(m_window.typed(), (std::vector<KeyWindow::Key>{{x(evdev), state}}));
    }

    void expectNothingHeld() {
        EXPECT_EQ(m_keyboard.modifiers(), 0);
        for (int key = 8; key < 256; ++key)
            EXPECT_FALSE(m_keyboard.isDown(XKeycode(key))) << key;
    }

    XServer m_server;
    KeyWindow m_window{m_server.display(), "Editor"};
    DeviceKeyboard m_keyboard{m_server.display()};
    X11KeyConnection m_connection{m_server.display()};
    X11KeySynthesizer m_synthesizer{m_connection};
};

}  // namespace quietlark
