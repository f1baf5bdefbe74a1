#include "platform/linux/x11/pasteboard/x11_selection_owner.h"

#include <algorithm>
#include <string>
#include <utility>

namespace quietlark {

X11SelectionOwner::X11SelectionOwner(X11PasteboardConnection& connection,
                                     X11SelectionServer& server, xcb_atom_t selection,
                                     std::chrono::milliseconds grace)
    : m_connection(connection),
      m_server(server),
      m_selection(selection),
      m_hint(connection.atom(std::string(secretHintTarget))),
      m_timeProperty(connection.atom("QUIETLARK_TIME")),
      m_grace(grace),
      m_window(connection.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE)) {}

void X11SelectionOwner::take(const QString& text, std::optional<PasteboardSnapshot> covered) {
    m_taking = Text{{dictatedText(text), m_connection}, std::move(covered)};
    // Appending nothing changes nothing, but is reported with the server's time.
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_APPEND, m_window, m_timeProperty,
                        XCB_ATOM_INTEGER, 32, 0, nullptr);
}

void X11SelectionOwner::onPropertyNotify(const xcb_property_notify_event_t& event) {
    if (!m_taking || event.window != m_window || event.atom != m_timeProperty) return;
    auto text = *std::exchange(m_taking, std::nullopt);
    xcb_set_selection_owner(m_connection.get(), m_window, m_selection, event.time);
    // Somebody may have been faster; ICCCM section 2.1 wants to see it confirmed.
    if (m_connection.selectionOwner(m_selection) != m_window) return letGo();

    text.pasteTarget = m_connection.focusedClient();
    m_isOwner = true;
    m_ownedSince = event.time;
    m_text = std::move(text);
    m_contents.reset();
}

void X11SelectionOwner::restore(PasteboardSnapshot snapshot, Clock::time_point now) {
    if (!awaitsRestore()) return;
    if (!snapshot.empty()) m_contents.emplace(std::move(snapshot), m_connection);
    if (!m_text->pasteTarget || m_text->isRead) return endText();
    m_text->ends = now + m_grace;
    announce();
}

void X11SelectionOwner::restoreCovered(Clock::time_point now) {
    if (awaitsRestore()) restore(m_text->covered.value_or(PasteboardSnapshot()), now);
}

void X11SelectionOwner::keep() {
    if (!awaitsRestore()) return;
    PasteboardSnapshot kept = m_text->contents.snapshot();
    for (auto& item : kept) {
        std::erase_if(
            item, [](const CapturedType& captured) { return captured.type == secretHintTarget; });
    }
    m_contents.emplace(std::move(kept), m_connection);
    endText();
}

void X11SelectionOwner::finish() {
    if (!m_text || (awaitsRestore() && !m_text->covered)) return;
    if (awaitsRestore() && !m_text->covered->empty())
        m_contents.emplace(*m_text->covered, m_connection);
    endText();
}

PasteboardSnapshot X11SelectionOwner::snapshot() const {
    if (awaitsRestore()) return m_text->covered.value_or(m_text->contents.snapshot());
    return m_contents ? m_contents->snapshot() : PasteboardSnapshot();
}

void X11SelectionOwner::onRequest(const xcb_selection_request_event_t& request) {
    // A request that is older than the ownership could be refused, but there is nobody else left
    // to answer it.
    const bool isOurs = m_isOwner && request.owner == m_window && request.selection == m_selection;
    const std::uint32_t client = m_connection.clientOf(request.requestor);
    const bool withText = isOurs && seesText(client);
    const X11PasteboardContents* contents = nullptr;
    if (withText) {
        contents = &m_text->contents;
    } else if (isOurs && m_contents) {
        contents = &*m_contents;
    }
    const auto delivered = m_server.respond(request, {contents, m_ownedSince});

    if (!withText || client != m_text->pasteTarget) return;
    m_text->isShown = m_text->ends.has_value();
    m_text->isRead = m_text->isRead || std::ranges::any_of(delivered, [this](xcb_atom_t target) {
                         return target != m_hint;
                     });
    if (m_text->isRead && m_text->ends) endText();
}

void X11SelectionOwner::onClear(const xcb_selection_clear_event_t& event) {
    if (event.owner == m_window && event.selection == m_selection) letGo();
}

std::optional<X11SelectionOwner::Clock::time_point> X11SelectionOwner::onTime(
    Clock::time_point now) {
    if (!m_text || !m_text->ends) return std::nullopt;
    if (now < *m_text->ends) return m_text->ends;
    endText();
    return std::nullopt;
}

bool X11SelectionOwner::seesText(std::uint32_t client) const {
    return m_text && (awaitsRestore() || client == m_text->pasteTarget);
}

void X11SelectionOwner::endText() {
    // Others know the restored contents since restore(); only the target has something to learn.
    const bool isNews = !m_text->ends || m_text->isShown || !m_contents;
    m_text.reset();
    if (isNews) announce();
}

void X11SelectionOwner::announce() {
    // Programs that keep what they have read look again when the selection is taken anew.
    const bool isEmpty = !m_text && !m_contents;
    const xcb_window_t owner = isEmpty ? xcb_window_t{XCB_WINDOW_NONE} : m_window;
    xcb_set_selection_owner(m_connection.get(), owner, m_selection, m_ownedSince);
    if (isEmpty) letGo();
}

void X11SelectionOwner::letGo() {
    m_isOwner = false;
    m_text.reset();
    m_contents.reset();
}

}  // namespace quietlark
