#include "platform/linux/x11/pasteboard/x11_pasteboard_session.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

namespace {

template <typename Event>
const Event& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

}  // namespace

X11PasteboardSession::X11PasteboardSession(const QByteArray& display, X11PasteboardLimits limits)
    : m_limits(limits), m_connection(display) {
    watchOwners();
}

void X11PasteboardSession::watchOwners() {
    xcb_connection_t* connection = m_connection.get();
    const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (extension == nullptr || !extension->present) return;
    // The server sends nothing to a client that has not said which version it speaks.
    const XcbReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection, xcb_xfixes_query_version(connection, 1, 0), nullptr));
    constexpr std::uint32_t changes = XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE;
    xcb_xfixes_select_selection_input(connection, m_owner.window(), m_clipboard, changes);
    xcb_xfixes_select_selection_input(connection, m_primary.window(), XCB_ATOM_PRIMARY, changes);
    m_ownerChangedEvent = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
}

bool X11PasteboardSession::isBusy() const {
    return isConnected() && (m_reader || m_owner.isTaking() || m_primary.isTaking());
}

void X11PasteboardSession::snapshot(Answer answer) {
    // The server's reply comes after the news of all that happened before, such as a newer copy.
    const xcb_window_t owner = m_connection.selectionOwner(m_clipboard);
    processEvents();
    if (!isConnected()) return answer(std::nullopt);
    if (m_owner.isOwner()) return answer(m_owner.snapshot());
    if (owner == XCB_WINDOW_NONE) {
        m_lastRead = PasteboardSnapshot();
        return answer(m_lastRead);
    }
    read(m_clipboard, [this, answer = std::move(answer)](std::optional<PasteboardSnapshot> copied) {
        m_lastRead = std::move(copied);
        answer(m_lastRead);
    });
}

void X11PasteboardSession::read(xcb_atom_t selection, Answer answer) {
    m_answer = std::move(answer);
    m_readerDeadline = Clock::now() + m_limits.snapshot;
    m_reader.emplace(m_connection, m_requestors, selection, m_limits.snapshotBytes);
}

void X11PasteboardSession::setString(const QString& text, OutcomeHandler onSet) {
    if (!isConnected()) return onSet(Outcome::disconnected);
    m_onSet = std::move(onSet);
    m_needsPrimary = m_connection.focusPastesPrimary();
    // Once it is ours it has the text as well: the focus may move to where it is pasted.
    if (m_primary.isOwner()) return takeBoth(text, m_primary.snapshot());
    if (!m_needsPrimary) return takeClipboard(text);
    if (m_connection.selectionOwner(XCB_ATOM_PRIMARY) == XCB_WINDOW_NONE)
        return takeBoth(text, PasteboardSnapshot());
    // Read before anything is taken: programs that make the selection follow the clipboard would
    // put the text there.
    m_isCopiedAnew = false;
    read(XCB_ATOM_PRIMARY, [this, text](std::optional<PasteboardSnapshot> selected) {
        // A copy that is newer than the snapshot is not covered unread.
        if (!m_isCopiedAnew) takeBoth(text, std::move(selected));
    });
}

void X11PasteboardSession::takeClipboard(const QString& text) {
    m_owner.take(text,
                 m_owner.isOwner() ? m_owner.snapshot() : std::exchange(m_lastRead, std::nullopt));
}

void X11PasteboardSession::takeBoth(const QString& text,
                                    std::optional<PasteboardSnapshot> selected) {
    m_primary.take(text, std::move(selected));
    takeClipboard(text);
}

void X11PasteboardSession::restore(PasteboardSnapshot snapshot) {
    m_owner.restore(std::move(snapshot), Clock::now());
    m_primary.restoreCovered(Clock::now());
}

void X11PasteboardSession::keepString() {
    m_owner.keep();
    m_primary.restoreCovered(Clock::now());
}

void X11PasteboardSession::stopReading() {
    if (!m_reader) return;
    if (m_reader->selection() != m_clipboard) return answerReader();
    m_reader.reset();
    m_answer = nullptr;
}

void X11PasteboardSession::quit() {
    m_quitDeadline = Clock::now() + m_limits.handover;
    m_owner.finish();
    m_primary.finish();
    if (m_owner.servesRestored()) m_handover.emplace(m_connection, m_owner.window());
}

bool X11PasteboardSession::hasQuit() const {
    if (!m_quitDeadline) return false;
    const bool isHandedOver = !m_handover || m_handover->isDone();
    return !isConnected() || (isHandedOver && !m_server.hasTransfers()) ||
           Clock::now() >= *m_quitDeadline;
}

std::optional<X11PasteboardSession::Clock::time_point> X11PasteboardSession::processTime(
    Clock::time_point now) {
    if (m_reader && now >= m_readerDeadline) answerReader();
    auto next = m_server.dropOverdue(now);
    const auto earlier = [&next](std::optional<Clock::time_point> time) {
        if (time) next = std::min(*time, next.value_or(*time));
    };
    earlier(m_owner.onTime(now));
    earlier(m_primary.onTime(now));
    if (m_reader) earlier(m_readerDeadline);
    earlier(m_quitDeadline);
    return next;
}

bool X11PasteboardSession::processEvents() {
    bool hasReceived = false;
    for (bool isNew = true; isNew; hasReceived = hasReceived || isNew) {
        // Sending can receive as well, so it comes before the last look at the queue.
        xcb_flush(m_connection.get());
        isNew = false;
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
            dispatch(*event);
            isNew = true;
        }
        if (m_reader && (m_reader->isDone() || !isConnected())) {
            answerReader();
            isNew = true;
        }
        if (m_onSet && !isBusy()) reportOutcome();
    }
    // The end of the connection is news as well: nobody is busy with the server any more.
    const bool hasBroken = std::exchange(m_wasConnected, isConnected()) && !isConnected();
    return hasReceived || hasBroken;
}

void X11PasteboardSession::dispatch(const xcb_generic_event_t& event) {
    constexpr int sentByAnotherClient = 0x80;
    constexpr int errorType = 0;
    const int type = event.response_type & ~sentByAnotherClient;
    if (type == m_ownerChangedEvent)
        return onOwnerChanged(as<xcb_xfixes_selection_notify_event_t>(event));
    switch (type) {
        case XCB_SELECTION_REQUEST:
            return onSelectionRequest(as<xcb_selection_request_event_t>(event));
        case XCB_SELECTION_CLEAR:
            m_owner.onClear(as<xcb_selection_clear_event_t>(event));
            return m_primary.onClear(as<xcb_selection_clear_event_t>(event));
        case XCB_SELECTION_NOTIFY:
            return onSelectionNotify(as<xcb_selection_notify_event_t>(event));
        case XCB_PROPERTY_NOTIFY:
            return onPropertyNotify(as<xcb_property_notify_event_t>(event));
        case XCB_DESTROY_NOTIFY:
            return m_server.onWindowGone(as<xcb_destroy_notify_event_t>(event).window);
        case errorType:
            return onError(as<xcb_generic_error_t>(event));
        default:
            return;
    }
}

void X11PasteboardSession::onSelectionRequest(const xcb_selection_request_event_t& request) {
    auto& owner = request.owner == m_primary.window() ? m_primary : m_owner;
    owner.onRequest(request);
}

void X11PasteboardSession::onSelectionNotify(const xcb_selection_notify_event_t& event) {
    if (m_handover) m_handover->onSelectionNotify(event);
    if (m_requestors.settle(event.requestor)) return;
    if (m_reader) m_reader->onSelectionNotify(event);
}

void X11PasteboardSession::onPropertyNotify(const xcb_property_notify_event_t& event) {
    m_owner.onPropertyNotify(event);
    m_primary.onPropertyNotify(event);
    m_server.onPropertyNotify(event);
    if (m_reader) m_reader->onPropertyNotify(event);
}

void X11PasteboardSession::onError(const xcb_generic_error_t& error) {
    // Other programs' windows may go at any time. It is no news about anything else.
    if (error.error_code == XCB_WINDOW) m_server.onWindowGone(error.resource_id);
}

void X11PasteboardSession::onOwnerChanged(const xcb_xfixes_selection_notify_event_t& event) {
    if (event.owner == m_owner.window() || event.owner == m_primary.window()) return;
    if (event.selection == m_clipboard) {
        m_lastRead.reset();
        m_isCopiedAnew = true;
    }
    if (m_reader && m_reader->selection() == event.selection) m_reader->onOwnerChanged(event.owner);
}

void X11PasteboardSession::answerReader() {
    auto result = isConnected() ? m_reader->result() : std::nullopt;
    m_reader.reset();
    std::exchange(m_answer, nullptr)(std::move(result));
}

void X11PasteboardSession::reportOutcome() {
    std::exchange(m_onSet, nullptr)(outcome());
}

X11PasteboardSession::Outcome X11PasteboardSession::outcome() const {
    if (!isConnected()) return Outcome::disconnected;
    if (!m_owner.isOwner()) return Outcome::takenByAnother;
    return m_needsPrimary && !m_primary.isOwner() ? Outcome::primaryTakenByAnother : Outcome::set;
}

}  // namespace quietlark
