#pragma once

#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"

namespace quietlark {

/// Asks the clipboard manager, if there is one, to keep what we own beyond our end: the
/// SAVE_TARGETS conversion of freedesktop.org's clipboard manager convention. The manager then
/// reads it all, so questions have to be answered until it is done. One thread.
class X11ClipboardHandover {
public:
    /// `window` owns the clipboard.
    X11ClipboardHandover(X11PasteboardConnection& connection, xcb_window_t window);

    void onSelectionNotify(const xcb_selection_notify_event_t& event);

    /// True when the manager has what it wants, or there is none.
    [[nodiscard]] bool isDone() const { return m_isDone; }

private:
    xcb_atom_t m_manager;
    bool m_isDone;
};

}  // namespace quietlark
