// clipboard_owner TARGET=ANSWER...
//
// Another program that has copied something. Each TARGET is answered in its way:
//   text:WORDS     those words
//   pattern:SIZE   so many bytes, in pieces above 100 000
//   atoms:A,B      32-bit items of type ATOM
//   window:        the number of a window, of type WINDOW
//   refuse         listed, but not delivered
//   hang           never answered
//   stall          announced in pieces that never come
//   endless        pieces without end
//   exit           ends this program in place of an answer
// TARGETS lists the others in the order given, unless it is given an answer itself.
// Prints "owning", then "asked TARGET" for each question and "lost" when somebody else has copied.
// A line on standard input makes it copy anew.

#include <map>
#include <string>
#include <vector>

#include <poll.h>
#include <unistd.h>

#include "peers/x_peer.h"

namespace quietlark {
namespace {

constexpr qsizetype largestPiece = 100'000;

class ClipboardOwner {
public:
    explicit ClipboardOwner(const std::vector<std::string>& offers);
    [[noreturn]] void run();

private:
    struct Transfer {
        std::string type;
        QByteArray rest;
        bool isEndless = false;
    };
    using Key = std::pair<xcb_window_t, xcb_atom_t>;

    void onEvent(const xcb_generic_event_t& event);
    void onRequest(const xcb_selection_request_event_t& request);
    void sendData(const xcb_selection_request_event_t& request, Transfer transfer);
    void announcePieces(const xcb_selection_request_event_t& request);
    void sendPiece(const Key& key);
    std::optional<XPeer::Value> itemsFor(const std::string& target, const std::string& answer);

    XPeer m_peer;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    std::vector<std::string> m_order;
    std::map<std::string, std::string> m_answers;
    std::map<Key, Transfer> m_transfers;
};

std::vector<std::string> split(const std::string& list) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= list.size();) {
        const auto end = std::min(list.find(',', start), list.size());
        parts.push_back(list.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

ClipboardOwner::ClipboardOwner(const std::vector<std::string>& offers) {
    for (const auto& offer : offers) {
        // Names of targets may hold an "=" themselves, answers do not.
        const auto sign = offer.rfind('=');
        m_order.push_back(offer.substr(0, sign));
        m_answers[m_order.back()] = offer.substr(sign + 1);
    }
    m_peer.onOther = [this](const xcb_generic_event_t& event) { onEvent(event); };
    m_window = m_peer.own("CLIPBOARD");
    print("owning");
}

void ClipboardOwner::run() {
    for (bool hasInput = true;;) {
        m_peer.dispatchPending();
        pollfd sources[] = {{xcb_get_file_descriptor(m_peer.get()), POLLIN, 0},
                            {hasInput ? STDIN_FILENO : -1, POLLIN, 0}};
        poll(sources, 2, -1);
        if (sources[1].revents == 0) continue;
        char line[100];
        hasInput = read(STDIN_FILENO, line, sizeof line) > 0;
        if (!hasInput) continue;
        m_window = m_peer.own("CLIPBOARD");
        print("owning");
    }
}

void ClipboardOwner::onEvent(const xcb_generic_event_t& event) {
    if (event.response_type == XCB_SELECTION_CLEAR) print("lost");
    if (event.response_type == XCB_SELECTION_REQUEST)
        onRequest(reinterpret_cast<const xcb_selection_request_event_t&>(event));
    if (event.response_type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.state == XCB_PROPERTY_DELETE) sendPiece({change.window, change.atom});
    }
}

void ClipboardOwner::onRequest(const xcb_selection_request_event_t& request) {
    const std::string target = m_peer.name(request.target);
    print("asked " + QByteArray::fromStdString(target));
    const auto known = m_answers.find(target);
    const std::string answer = known == m_answers.end() ? "refuse" : known->second;
    const auto argument = answer.substr(std::min(answer.find(':') + 1, answer.size()));

    if (answer == "hang") return;
    if (answer == "exit") std::exit(0);
    if (answer.starts_with("text:")) {
        sendData(request, {target, QByteArray::fromStdString(argument)});
    } else if (answer.starts_with("pattern:")) {
        sendData(request, {target, patternOf(std::stoi(argument))});
    } else if (answer == "endless") {
        m_transfers[{request.requestor, request.property}] = {target, patternOf(largestPiece),
                                                              true};
        announcePieces(request);
    } else if (answer == "stall") {
        announcePieces(request);
    } else {
        m_peer.answer(request, itemsFor(target, answer));
    }
}

std::optional<XPeer::Value> ClipboardOwner::itemsFor(const std::string& target,
                                                     const std::string& answer) {
    if (answer == "window:") return XPeer::Value{"WINDOW", 32, itemsOf32({m_window})};
    std::vector<std::string> names;
    if (answer.starts_with("atoms:")) {
        names = split(answer.substr(6));
    } else if (target == "TARGETS" && answer == "refuse" && !m_answers.contains(target)) {
        names = m_order;
    } else {
        return std::nullopt;
    }
    std::vector<std::uint32_t> atoms;
    for (const auto& name : names)
        atoms.push_back(m_peer.atom(name));
    return XPeer::Value{"ATOM", 32, itemsOf32(atoms)};
}

void ClipboardOwner::sendData(const xcb_selection_request_event_t& request, Transfer transfer) {
    if (transfer.rest.size() <= largestPiece)
        return m_peer.answer(request, XPeer::Value{transfer.type, 8, transfer.rest});
    m_transfers[{request.requestor, request.property}] = std::move(transfer);
    announcePieces(request);
}

void ClipboardOwner::announcePieces(const xcb_selection_request_event_t& request) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_peer.get(), request.requestor, XCB_CW_EVENT_MASK, &events);
    m_peer.answer(request, XPeer::Value{"INCR", 32, itemsOf32({1})});
}

void ClipboardOwner::sendPiece(const Key& key) {
    const auto transfer = m_transfers.find(key);
    if (transfer == m_transfers.end()) return;
    auto& [type, rest, isEndless] = transfer->second;
    const QByteArray piece = rest.left(largestPiece);
    if (!isEndless) rest.remove(0, piece.size());
    xcb_change_property(m_peer.get(), XCB_PROP_MODE_REPLACE, key.first, key.second,
                        m_peer.atom(type), 8, static_cast<std::uint32_t>(piece.size()),
                        piece.constData());
    if (piece.isEmpty()) m_transfers.erase(transfer);
}

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    quietlark::ClipboardOwner({argv + 1, argv + argc}).run();
}
