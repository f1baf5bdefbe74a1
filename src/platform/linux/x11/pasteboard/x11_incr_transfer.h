#pragma once

#include <chrono>

#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_contents.h"

namespace quietlark {

/// Contents on their way to another program in pieces, because they are larger than one request:
/// each piece goes out when the one before was taken away, and an empty one ends them (INCR, ICCCM
/// section 2.7.2). It keeps its data, whatever becomes of the selection meanwhile. One thread.
class X11IncrTransfer {
public:
    using Clock = std::chrono::steady_clock;

    /// Announces the transfer. The caller sees to it that changes of the requestor's properties
    /// are reported from before on.
    X11IncrTransfer(X11PasteboardConnection& connection, xcb_window_t requestor,
                    xcb_atom_t property, X11PasteboardContents::Entry entry);

    [[nodiscard]] xcb_window_t requestor() const { return m_requestor; }
    [[nodiscard]] xcb_atom_t property() const { return m_property; }

    /// The requestor has taken the last piece.
    void sendNext();

    /// True once the empty piece was sent.
    [[nodiscard]] bool isFinished() const { return m_isFinished; }

    /// When the last piece was sent.
    [[nodiscard]] Clock::time_point lastProgress() const { return m_lastProgress; }

private:
    X11PasteboardConnection& m_connection;
    xcb_window_t m_requestor;
    xcb_atom_t m_property;
    X11PasteboardContents::Entry m_entry;
    qsizetype m_sent = 0;
    bool m_isFinished = false;
    Clock::time_point m_lastProgress = Clock::now();
};

}  // namespace quietlark
