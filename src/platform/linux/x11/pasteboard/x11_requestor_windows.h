#pragma once

#include <set>

#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"

namespace quietlark {

/// The windows on which other programs leave the contents that were asked of them, one for each
/// question: owners may keep at most one transfer for a window. One thread.
class X11RequestorWindows {
public:
    explicit X11RequestorWindows(X11PasteboardConnection& connection) : m_connection(connection) {}

    /// A window that reports changes of its properties.
    [[nodiscard]] xcb_window_t create();

    /// Destroys a window whose question was answered.
    void destroy(xcb_window_t window);

    /// Keeps a window whose question is still open until its answer comes: an owner that was only
    /// slow would write to a window that is gone, and an X error ends many programs.
    void abandon(xcb_window_t window);

    /// Tells that a question was answered. True when the window was an abandoned one.
    bool settle(xcb_window_t window);

private:
    X11PasteboardConnection& m_connection;
    std::set<xcb_window_t> m_abandoned;
};

}  // namespace quietlark
