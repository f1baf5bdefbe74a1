#pragma once

#include <xcb/xcb.h>

namespace quietlark {

/// The window that owns a selection, or None. One round trip.
[[nodiscard]] xcb_window_t selectionOwner(xcb_connection_t* connection, xcb_atom_t selection);

/// Whether one client owns both the PRIMARY selection and the clipboard: then it has put there what
/// is to be pasted, and not only the user who has selected something. A few round trips.
[[nodiscard]] bool primaryIsOwnedWithClipboard(xcb_connection_t* connection);

}  // namespace quietlark
