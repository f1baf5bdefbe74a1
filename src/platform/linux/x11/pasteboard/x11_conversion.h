#pragma once

#include <cstddef>

#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"
#include "platform/linux/x11/pasteboard/x11_requestor_windows.h"

namespace quietlark {

/// One question to a selection's owner: its contents for one target (ICCCM section 2.4), in one
/// piece or in many (INCR, section 2.7.2). Withdrawn when destroyed. One thread.
class X11Conversion {
public:
    X11Conversion(X11PasteboardConnection& connection, X11RequestorWindows& windows,
                  xcb_atom_t selection, xcb_atom_t target);
    ~X11Conversion();
    X11Conversion(const X11Conversion&) = delete;
    X11Conversion& operator=(const X11Conversion&) = delete;

    enum class State { asked, receiving, delivered, failed };
    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] bool isPending() const {
        return m_state == State::asked || m_state == State::receiving;
    }

    [[nodiscard]] xcb_window_t requestor() const { return m_requestor; }
    [[nodiscard]] xcb_atom_t target() const { return m_target; }

    /// What was delivered.
    [[nodiscard]] const X11Property& value() const { return m_value; }

    /// The owner has answered. What comes is taken off `budget`, a number of bytes; more than that
    /// fails, and gives back what it took.
    void onAnswer(const xcb_selection_notify_event_t& event, std::size_t& budget);

    /// A property of the requestor's has got a new value: the next piece.
    void onNewValue(const xcb_property_notify_event_t& event, std::size_t& budget);

private:
    void fail(std::size_t& budget);

    X11PasteboardConnection& m_connection;
    X11RequestorWindows& m_windows;
    xcb_atom_t m_target;
    xcb_atom_t m_property;
    xcb_window_t m_requestor;
    State m_state = State::asked;
    X11Property m_value;
};

}  // namespace quietlark
