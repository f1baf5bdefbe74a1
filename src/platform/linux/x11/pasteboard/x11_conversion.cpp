#include "platform/linux/x11/pasteboard/x11_conversion.h"

#include <algorithm>
#include <utility>

namespace quietlark {

X11Conversion::X11Conversion(X11PasteboardConnection& connection, X11RequestorWindows& windows,
                             xcb_atom_t selection, xcb_atom_t target)
    : m_connection(connection),
      m_windows(windows),
      m_target(target),
      m_property(connection.atom("QUIETLARK_CONTENTS")),
      m_requestor(windows.create()) {
    // No event of the user's causes this question, so there is no other time to ask with.
    xcb_convert_selection(connection.get(), m_requestor, selection, target, m_property,
                          XCB_CURRENT_TIME);
}

X11Conversion::~X11Conversion() {
    if (m_state == State::asked) {
        m_windows.abandon(m_requestor);
    } else {
        m_windows.destroy(m_requestor);
    }
}

void X11Conversion::onAnswer(const xcb_selection_notify_event_t& event, std::size_t& budget) {
    if (m_state != State::asked) return;
    if (event.property == XCB_ATOM_NONE) return fail(budget);
    auto answer = m_connection.takeProperty(m_requestor, m_property, budget);
    if (!answer || !answer->isWhole) return fail(budget);
    if (answer->type == m_connection.atom("INCR")) {
        // Taking the announcement away has asked for the first piece.
        m_state = State::receiving;
        return;
    }
    budget -= std::min(budget, static_cast<std::size_t>(answer->data.size()));
    m_value = *std::move(answer);
    m_state = State::delivered;
}

void X11Conversion::onNewValue(const xcb_property_notify_event_t& event, std::size_t& budget) {
    if (m_state != State::receiving || event.atom != m_property) return;
    auto piece = m_connection.takeProperty(m_requestor, m_property, budget);
    // Gone already: an earlier piece brought it along.
    if (!piece) return;
    if (!piece->isWhole) return fail(budget);
    m_value.type = piece->type;
    m_value.format = piece->format;
    if (piece->data.isEmpty()) {
        m_state = State::delivered;
        return;
    }
    budget -= std::min(budget, static_cast<std::size_t>(piece->data.size()));
    m_value.data.append(piece->data);
}

void X11Conversion::fail(std::size_t& budget) {
    budget += static_cast<std::size_t>(m_value.data.size());
    m_value = {};
    m_state = State::failed;
}

}  // namespace quietlark
