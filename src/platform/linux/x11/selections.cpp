#include "platform/linux/x11/selections.h"

#include <cstdint>
#include <string_view>

#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

xcb_window_t selectionOwner(xcb_connection_t* connection, xcb_atom_t selection) {
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

bool primaryIsOwnedWithClipboard(xcb_connection_t* connection) {
    constexpr std::string_view name = "CLIPBOARD";
    const XcbReply<xcb_intern_atom_reply_t> clipboard(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, name.size(), name.data()), nullptr));
    const xcb_setup_t* setup = xcb_get_setup(connection);
    // Nobody can own what has no name, and a connection that has broken has no setup.
    if (!clipboard || clipboard->atom == XCB_ATOM_NONE || setup == nullptr) return false;

    const xcb_window_t primaryOwner = selectionOwner(connection, XCB_ATOM_PRIMARY);
    const xcb_window_t clipboardOwner = selectionOwner(connection, clipboard->atom);
    // What the mask leaves is the client's: the same for all of its windows.
    const std::uint32_t client = ~setup->resource_id_mask;
    return primaryOwner != XCB_WINDOW_NONE && (primaryOwner & client) == (clipboardOwner & client);
}

}  // namespace quietlark
