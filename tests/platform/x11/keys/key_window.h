#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <QByteArray>
#include <xcb/xcb.h>

namespace quietlark {

/// A window of another program that notes what is typed into it.
class KeyWindow {
public:
    struct Key {
        std::uint8_t xKeycode = 0;
        std::uint16_t state = 0;  ///< the modifiers, and the layout in bits 13 and 14
        bool pressed = true;

        bool operator==(const Key&) const = default;
    };

    /// `className` is its WM_CLASS, for the window itself; empty for none.
    explicit KeyWindow(const QByteArray& display, const QByteArray& className = {});

    void takeFocus();
    /// Puts the focus on a child of the window, as toolkits do.
    void takeFocusWithAChild();
    /// Takes the focus from every window.
    void dropFocus();
    /// Lets the focus follow the pointer, as it does without a window manager.
    void letFocusFollowPointer();

    /// What has been typed since the last question: the presses of keys that are no modifiers.
    [[nodiscard]] std::vector<Key> typed();

    void forget() { static_cast<void>(events()); }

    /// Every key event since the last question.
    [[nodiscard]] std::vector<Key> events();

private:
    [[nodiscard]] xcb_connection_t* xcb() const { return m_connection.get(); }
    xcb_window_t createWindow(xcb_window_t parent);
    void focus(xcb_window_t window);
    void finish() const;

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_window = XCB_NONE;
};

/// How a failed expectation shows a key.
void PrintTo(const KeyWindow::Key& key, std::ostream* stream);

}  // namespace quietlark
