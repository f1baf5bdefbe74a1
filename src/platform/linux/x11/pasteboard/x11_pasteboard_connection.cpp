#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "platform/linux/x11/focused_window.h"
#include "platform/linux/x11/selections.h"
#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

namespace {

// What a ChangeProperty request needs besides its data, rounded up.
constexpr std::size_t requestOverhead = 64;

xcb_screen_t* screenOf(const xcb_setup_t* setup, int number) {
    auto screens = xcb_setup_roots_iterator(setup);
    for (; screens.rem > 1 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.data;
}

}  // namespace

X11PasteboardConnection::X11PasteboardConnection(const QByteArray& display) {
    int screen = 0;
    m_connection = xcb_connect(display.isEmpty() ? nullptr : display.constData(), &screen);
    if (!isOpen()) return;
    // A connection that breaks later forgets these, so they are kept.
    const xcb_setup_t* setup = xcb_get_setup(m_connection);
    m_fileDescriptor = xcb_get_file_descriptor(m_connection);
    m_root = screenOf(setup, screen)->root;
    m_resourceIdMask = setup->resource_id_mask;
    m_largestChunk = std::size_t{setup->maximum_request_length} * 4 - requestOverhead;
}

X11PasteboardConnection::~X11PasteboardConnection() {
    xcb_disconnect(m_connection);
}

bool X11PasteboardConnection::isOpen() const {
    return xcb_connection_has_error(m_connection) == 0;
}

xcb_atom_t X11PasteboardConnection::atom(const std::string& name) {
    if (const auto known = m_atoms.find(name); known != m_atoms.end()) return known->second;
    if (name.empty() || name.size() > std::numeric_limits<std::uint16_t>::max())
        return XCB_ATOM_NONE;
    const auto cookie =
        xcb_intern_atom(m_connection, false, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(m_connection, cookie, nullptr));
    if (!reply || reply->atom == XCB_ATOM_NONE) return XCB_ATOM_NONE;
    m_names.emplace(reply->atom, name);
    return m_atoms.emplace(name, reply->atom).first->second;
}

std::string X11PasteboardConnection::name(xcb_atom_t atom) {
    learnNames({&atom, 1});
    const auto known = m_names.find(atom);
    return known == m_names.end() ? std::string() : known->second;
}

void X11PasteboardConnection::learnNames(std::span<const xcb_atom_t> atoms) {
    std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
    for (const xcb_atom_t atom : atoms) {
        if (atom != XCB_ATOM_NONE && !m_names.contains(atom))
            asked.emplace_back(atom, xcb_get_atom_name(m_connection, atom));
    }
    for (const auto& [atom, cookie] : asked) {
        xcb_generic_error_t* error = nullptr;
        const XcbReply<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(m_connection, cookie, &error));
        std::free(error);
        if (!reply) continue;
        std::string name(xcb_get_atom_name_name(reply.get()),
                         static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
        m_atoms.emplace(name, atom);
        m_names.emplace(atom, std::move(name));
    }
}

xcb_window_t X11PasteboardConnection::createWindow(std::uint32_t eventMask) {
    const xcb_window_t window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, 0, window, m_root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    return window;
}

std::optional<X11Property> X11PasteboardConnection::takeProperty(xcb_window_t window,
                                                                 xcb_atom_t property,
                                                                 std::size_t limit) {
    const auto words = std::min<std::size_t>(limit / 4 + 1, std::numeric_limits<int>::max() / 4);
    const auto cookie = xcb_get_property(m_connection, true, window, property, XCB_ATOM_ANY, 0,
                                         static_cast<std::uint32_t>(words));
    xcb_generic_error_t* error = nullptr;
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection, cookie, &error));
    std::free(error);
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    return X11Property{reply->type, reply->format,
                       QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                  xcb_get_property_value_length(reply.get())),
                       reply->bytes_after == 0};
}

xcb_window_t X11PasteboardConnection::selectionOwner(xcb_atom_t selection) {
    return quietlark::selectionOwner(m_connection, selection);
}

std::uint32_t X11PasteboardConnection::clientOf(xcb_window_t window) const {
    return window & ~m_resourceIdMask;
}

std::optional<std::uint32_t> X11PasteboardConnection::focusedClient() {
    const auto window = windowWithFocus(m_connection, m_root);
    if (!window) return std::nullopt;
    return clientOf(*window);
}

bool X11PasteboardConnection::focusPastesPrimary() {
    const auto window = focusedWindow(m_connection, m_root);
    return window && pastesPrimary(*window);
}

void X11PasteboardConnection::synchronize() {
    const XcbReply<xcb_get_input_focus_reply_t> answered(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

}  // namespace quietlark
