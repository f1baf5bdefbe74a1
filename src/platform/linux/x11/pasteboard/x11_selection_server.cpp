#include "platform/linux/x11/pasteboard/x11_selection_server.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

namespace quietlark {

namespace {

// As many as one request of the small kind could name.
constexpr std::size_t longestMultiple = 65536;

}  // namespace

X11SelectionServer::X11SelectionServer(X11PasteboardConnection& connection,
                                       std::chrono::milliseconds patience)
    : m_connection(connection), m_patience(patience) {}

std::vector<xcb_atom_t> X11SelectionServer::respond(const xcb_selection_request_event_t& request,
                                                    Answer answer) {
    std::vector<xcb_atom_t> delivered;
    // Old clients leave the property to the owner; it is then named after the target.
    const bool isOld = request.property == XCB_ATOM_NONE;
    const Question question{request.requestor, request.target,
                            isOld ? request.target : request.property};
    const bool isMultiple = request.target == m_connection.atom("MULTIPLE");
    bool isDone = false;
    if (answer.contents != nullptr && isMultiple) {
        isDone = !isOld && convertMultiple(question, answer, delivered);
    } else if (answer.contents != nullptr) {
        isDone = convert(question, answer, delivered);
    }

    notify(request, isDone ? question.property : xcb_atom_t{XCB_ATOM_NONE});
    return delivered;
}

void X11SelectionServer::notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    xcb_selection_notify_event_t event{};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = request.target;
    event.property = property;
    // Any event takes 32 bytes on the wire.
    std::array<char, 32> bytes{};
    std::memcpy(bytes.data(), &event, sizeof event);
    xcb_send_event(m_connection.get(), false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   bytes.data());
}

bool X11SelectionServer::convert(const Question& question, Answer answer,
                                 std::vector<xcb_atom_t>& delivered) {
    if (question.target == m_connection.atom("TARGETS")) {
        sendTargets(question, *answer.contents);
        return true;
    }
    if (question.target == m_connection.atom("TIMESTAMP")) {
        setProperty(question, XCB_ATOM_INTEGER, {answer.ownedSince});
        return true;
    }
    const auto* entry = answer.contents->find(question.target);
    if (entry == nullptr) return false;
    sendEntry(question, *entry);
    delivered.push_back(question.target);
    return true;
}

bool X11SelectionServer::convertMultiple(const Question& question, Answer answer,
                                         std::vector<xcb_atom_t>& delivered) {
    const auto pairs = m_connection.takeProperty(question.requestor, question.property,
                                                 longestMultiple * sizeof(xcb_atom_t));
    if (!pairs || !pairs->isWhole || pairs->format != 32) return false;
    const auto* const first = reinterpret_cast<const xcb_atom_t*>(pairs->data.constData());
    std::vector<xcb_atom_t> atoms(
        first, first + static_cast<std::size_t>(pairs->data.size()) / sizeof(xcb_atom_t));

    for (std::size_t index = 0; index + 1 < atoms.size(); index += 2) {
        const Question part{question.requestor, atoms[index], atoms[index + 1]};
        if (part.property == XCB_ATOM_NONE || !convert(part, answer, delivered))
            atoms[index + 1] = XCB_ATOM_NONE;
    }
    setProperty(question, pairs->type, atoms);
    return true;
}

void X11SelectionServer::sendTargets(const Question& question,
                                     const X11PasteboardContents& contents) {
    std::vector<xcb_atom_t> targets{m_connection.atom("TARGETS"), m_connection.atom("TIMESTAMP"),
                                    m_connection.atom("MULTIPLE")};
    std::ranges::transform(contents.entries(), std::back_inserter(targets),
                           &X11PasteboardContents::Entry::target);
    setProperty(question, XCB_ATOM_ATOM, targets);
}

void X11SelectionServer::sendEntry(const Question& question,
                                   const X11PasteboardContents::Entry& entry) {
    // Whoever asks again for the same property does not wait for the rest of the first answer.
    m_transfers.remove_if([&](const X11IncrTransfer& transfer) {
        return transfer.requestor() == question.requestor &&
               transfer.property() == question.property;
    });
    const auto size = static_cast<std::size_t>(entry.data.size());
    if (size <= m_connection.largestChunk()) {
        xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, question.requestor,
                            question.property, entry.type, entry.format,
                            static_cast<std::uint32_t>(size / (entry.format / 8)),
                            entry.data.constData());
        return;
    }
    watch(question.requestor, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    m_transfers.emplace_back(m_connection, question.requestor, question.property, entry);
}

void X11SelectionServer::setProperty(const Question& question, xcb_atom_t type,
                                     const std::vector<std::uint32_t>& items) {
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, question.requestor,
                        question.property, type, 32, static_cast<std::uint32_t>(items.size()),
                        items.data());
}

void X11SelectionServer::onPropertyNotify(const xcb_property_notify_event_t& event) {
    if (event.state != XCB_PROPERTY_DELETE) return;
    const auto transfer = std::ranges::find_if(m_transfers, [&](const X11IncrTransfer& candidate) {
        return candidate.requestor() == event.window && candidate.property() == event.atom;
    });
    if (transfer == m_transfers.end()) return;
    transfer->sendNext();
    if (transfer->isFinished()) remove(transfer);
}

void X11SelectionServer::onWindowGone(xcb_window_t requestor) {
    m_transfers.remove_if(
        [&](const X11IncrTransfer& transfer) { return transfer.requestor() == requestor; });
}

std::optional<X11SelectionServer::Clock::time_point> X11SelectionServer::dropOverdue(
    Clock::time_point now) {
    std::optional<Clock::time_point> next;
    for (auto transfer = m_transfers.begin(); transfer != m_transfers.end();) {
        const auto current = transfer++;
        const auto due = current->lastProgress() + m_patience;
        if (due <= now) {
            remove(current);
        } else {
            next = std::min(due, next.value_or(due));
        }
    }
    return next;
}

void X11SelectionServer::remove(std::list<X11IncrTransfer>::iterator transfer) {
    const xcb_window_t requestor = transfer->requestor();
    m_transfers.erase(transfer);
    const bool isLast =
        std::ranges::find(m_transfers, requestor, &X11IncrTransfer::requestor) == m_transfers.end();
    if (isLast) watch(requestor, XCB_EVENT_MASK_NO_EVENT);
}

void X11SelectionServer::watch(xcb_window_t requestor, std::uint32_t eventMask) {
    xcb_change_window_attributes(m_connection.get(), requestor, XCB_CW_EVENT_MASK, &eventMask);
}

}  // namespace quietlark
