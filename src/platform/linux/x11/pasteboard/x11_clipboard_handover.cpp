#include "platform/linux/x11/pasteboard/x11_clipboard_handover.h"

namespace quietlark {

X11ClipboardHandover::X11ClipboardHandover(X11PasteboardConnection& connection, xcb_window_t window)
    : m_manager(connection.atom("CLIPBOARD_MANAGER")),
      m_isDone(connection.selectionOwner(m_manager) == XCB_WINDOW_NONE) {
    if (m_isDone) return;
    // Without a list of targets in the property the manager saves what it thinks right.
    xcb_convert_selection(connection.get(), window, m_manager, connection.atom("SAVE_TARGETS"),
                          connection.atom("QUIETLARK_SAVED"), XCB_CURRENT_TIME);
}

void X11ClipboardHandover::onSelectionNotify(const xcb_selection_notify_event_t& event) {
    if (event.selection == m_manager) m_isDone = true;
}

}  // namespace quietlark
