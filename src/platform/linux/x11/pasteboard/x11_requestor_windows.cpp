#include "platform/linux/x11/pasteboard/x11_requestor_windows.h"

namespace quietlark {

xcb_window_t X11RequestorWindows::create() {
    return m_connection.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void X11RequestorWindows::destroy(xcb_window_t window) {
    xcb_destroy_window(m_connection.get(), window);
}

void X11RequestorWindows::abandon(xcb_window_t window) {
    m_abandoned.insert(window);
}

bool X11RequestorWindows::settle(xcb_window_t window) {
    if (m_abandoned.erase(window) == 0) return false;
    destroy(window);
    return true;
}

}  // namespace quietlark
