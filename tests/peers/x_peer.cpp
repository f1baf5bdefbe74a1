#include "peers/x_peer.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <QCryptographicHash>

namespace quietlark {

namespace {

struct Free {
    void operator()(void* pointer) const { std::free(pointer); }
};

template <typename T>
using Reply = std::unique_ptr<T, Free>;

}  // namespace

XPeer::XPeer(const char* display) {
    m_connection = xcb_connect(display, nullptr);
    if (xcb_connection_has_error(m_connection) != 0) {
        std::fputs("no X server\n", stderr);
        std::exit(1);
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
}

XPeer::~XPeer() {
    xcb_disconnect(m_connection);
}

xcb_atom_t XPeer::atom(const std::string& name) const {
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection,
        xcb_intern_atom(m_connection, false, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::string XPeer::name(xcb_atom_t atom) const {
    const Reply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr));
    if (!reply) return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

xcb_window_t XPeer::createWindow(std::uint32_t eventMask) const {
    const xcb_window_t window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_screen->root, 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &eventMask);
    return window;
}

xcb_timestamp_t XPeer::time() {
    const xcb_window_t window = createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_timestamp_t now = XCB_CURRENT_TIME;
    waitFor([&](const xcb_generic_event_t& event) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (event.response_type != XCB_PROPERTY_NOTIFY || change.window != window) return false;
        now = change.time;
        return true;
    });
    xcb_destroy_window(m_connection, window);
    return now;
}

void XPeer::waitFor(const Event& matches) {
    xcb_flush(m_connection);
    while (const Reply<xcb_generic_event_t> event{xcb_wait_for_event(m_connection)}) {
        event->response_type &= 0x7f;
        if (matches(*event)) return;
        if (onOther) onOther(*event);
        xcb_flush(m_connection);
    }
    std::exit(1);
}

void XPeer::dispatchPending() {
    xcb_flush(m_connection);
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        event->response_type &= 0x7f;
        if (onOther) onOther(*event);
        xcb_flush(m_connection);
    }
    if (xcb_connection_has_error(m_connection) != 0) std::exit(1);
}

std::optional<XPeer::Value> XPeer::takeProperty(xcb_window_t window, xcb_atom_t property) {
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection,
        xcb_get_property(m_connection, true, window, property, XCB_ATOM_ANY, 0, 0x1fffffff),
        nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    return Value{name(reply->type), reply->format,
                 QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                            xcb_get_property_value_length(reply.get()))};
}

std::optional<XPeer::Value> XPeer::ask(xcb_window_t window, const std::string& target) {
    const xcb_atom_t property = atom("PEER_CONTENTS");
    xcb_convert_selection(m_connection, window, atom("CLIPBOARD"), atom(target), property,
                          XCB_CURRENT_TIME);
    bool isRefused = false;
    waitFor([&](const xcb_generic_event_t& event) {
        const auto& answered = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
        if (event.response_type != XCB_SELECTION_NOTIFY || answered.requestor != window)
            return false;
        isRefused = answered.property == XCB_ATOM_NONE;
        return true;
    });
    if (isRefused) return std::nullopt;
    return takeProperty(window, property);
}

XPeer::Value XPeer::readPieces(xcb_window_t window, xcb_atom_t property) {
    Value whole;
    for (bool isOver = false; !isOver;) {
        waitFor([&](const xcb_generic_event_t& event) {
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            return event.response_type == XCB_PROPERTY_NOTIFY && change.window == window &&
                   change.atom == property && change.state == XCB_PROPERTY_NEW_VALUE;
        });
        const auto piece = takeProperty(window, property);
        if (!piece) continue;
        isOver = piece->data.isEmpty();
        whole.type = piece->type;
        whole.format = piece->format;
        whole.data.append(piece->data);
    }
    return whole;
}

std::optional<XPeer::Value> XPeer::read(const std::string& target) {
    const xcb_window_t window = createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    auto value = ask(window, target);
    if (value && value->type == "INCR") value = readPieces(window, atom("PEER_CONTENTS"));
    xcb_destroy_window(m_connection, window);
    return value;
}

void XPeer::answer(const xcb_selection_request_event_t& request,
                   const std::optional<Value>& value) {
    if (!value) return notify(request, XCB_ATOM_NONE);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        atom(value->type), static_cast<std::uint8_t>(value->format),
                        static_cast<std::uint32_t>(value->data.size() * 8 / value->format),
                        value->data.constData());
    notify(request, request.property);
}

void XPeer::notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    std::array<char, 32> bytes{};
    const xcb_selection_notify_event_t event{
        .response_type = XCB_SELECTION_NOTIFY,
        .pad0 = 0,
        .sequence = 0,
        .time = request.time,
        .requestor = request.requestor,
        .selection = request.selection,
        .target = request.target,
        .property = property,
    };
    std::memcpy(bytes.data(), &event, sizeof event);
    xcb_send_event(m_connection, false, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    xcb_flush(m_connection);
}

xcb_window_t XPeer::own(const std::string& selection) {
    const xcb_window_t window = createWindow(XCB_EVENT_MASK_NO_EVENT);
    xcb_set_selection_owner(m_connection, window, atom(selection), time());
    // A round trip: whoever reads the line that follows finds the selection owned.
    (void)name(atom(selection));
    return window;
}

xcb_window_t XPeer::owner(const std::string& selection) const {
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, atom(selection)), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

QByteArray itemsOf32(const std::vector<std::uint32_t>& items) {
    return {reinterpret_cast<const char*>(items.data()),
            static_cast<qsizetype>(items.size() * sizeof(std::uint32_t))};
}

std::vector<std::uint32_t> itemsIn(const QByteArray& data) {
    std::vector<std::uint32_t> items(static_cast<std::size_t>(data.size()) / sizeof(std::uint32_t));
    std::memcpy(items.data(), data.constData(), items.size() * sizeof(std::uint32_t));
    return items;
}

QByteArray patternOf(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

QByteArray describe(const std::optional<XPeer::Value>& value) {
    if (!value) return QByteArrayLiteral("refused");
    const bool isShortText =
        value->format == 8 && value->data.size() < 80 && !value->data.contains('\n');
    const QByteArray data =
        isShortText ? value->data
                    : QCryptographicHash::hash(value->data, QCryptographicHash::Sha1).toHex();
    return QByteArray::fromStdString(value->type) + ' ' + QByteArray::number(value->format) + ' ' +
           QByteArray::number(value->data.size()) + ' ' + data;
}

void print(const QByteArray& line) {
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

}  // namespace quietlark
