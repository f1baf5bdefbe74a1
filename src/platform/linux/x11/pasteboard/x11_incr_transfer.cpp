#include "platform/linux/x11/pasteboard/x11_incr_transfer.h"

#include <algorithm>
#include <utility>

namespace quietlark {

X11IncrTransfer::X11IncrTransfer(X11PasteboardConnection& connection, xcb_window_t requestor,
                                 xcb_atom_t property, X11PasteboardContents::Entry entry)
    : m_connection(connection),
      m_requestor(requestor),
      m_property(property),
      m_entry(std::move(entry)) {
    const auto atLeast = static_cast<std::uint32_t>(m_entry.data.size());
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, requestor, property,
                        connection.atom("INCR"), 32, 1, &atLeast);
}

void X11IncrTransfer::sendNext() {
    const auto chunk =
        std::min(m_entry.data.size() - m_sent, static_cast<qsizetype>(m_connection.largestChunk()));
    const auto items = static_cast<std::uint32_t>(chunk / (m_entry.format / 8));
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_requestor, m_property,
                        m_entry.type, m_entry.format, items, m_entry.data.constData() + m_sent);
    m_sent += chunk;
    m_isFinished = chunk == 0;
    m_lastProgress = Clock::now();
}

}  // namespace quietlark
