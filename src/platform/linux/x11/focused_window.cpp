#include "platform/linux/x11/focused_window.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include <QList>

#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

namespace {

// WM_CLASS holds two names; longer ones are nobody's.
constexpr std::uint32_t maxClassWords = 64;

// Toolkits put the focus on a child of their window, seldom more than two levels down.
constexpr int maxDepth = 32;

// Names in WM_CLASS of terminal emulators, as instance or class, in lower case.
constexpr auto terminals = std::to_array<std::string_view>({
    "alacritty",
    "aterm",
    "blackbox",
    "com.mitchellh.ghostty",
    "com.raggesilver.blackbox",
    "contour",
    "cool-retro-term",
    "deepin-terminal",
    "eterm",
    "foot",
    "ghostty",
    "gnome-terminal",
    "gnome-terminal-server",
    "guake",
    "hyper",
    "io.elementary.terminal",
    "kgx",
    "kitty",
    "konsole",
    "lxterminal",
    "mate-terminal",
    "mlterm",
    "org.codeberg.dnkl.foot",
    "org.gnome.console",
    "org.gnome.ptyxis",
    "org.gnome.terminal",
    "org.kde.konsole",
    "org.wezfurlong.wezterm",
    "pantheon-terminal",
    "ptyxis",
    "qterminal",
    "rio",
    "roxterm",
    "rxvt",
    "sakura",
    "st",
    "st-256color",
    "stterm",
    "tabby",
    "terminator",
    "terminology",
    "termit",
    "termite",
    "tilda",
    "tilix",
    "urxvt",
    "uxterm",
    "warp",
    "wezterm",
    "x-terminal-emulator",
    "xfce4-terminal",
    "xterm",
    "yakuake",
    "zutty",
});

// The same for those that paste the PRIMARY selection.
constexpr auto primaryTerminals = std::to_array<std::string_view>(
    {"aterm", "eterm", "mlterm", "rxvt", "urxvt", "uxterm", "xterm"});

bool isAmong(std::span<const std::string_view> names, const WindowClass& window) {
    const auto isKnown = [names](const QByteArray& name) {
        const QByteArray lowerCase = name.toLower();
        return std::ranges::find(names, std::string_view(lowerCase)) != names.end();
    };
    return isKnown(window.instance) || isKnown(window.className);
}

/// Where keys go while the focus is on the root or follows the pointer: to the window under it.
xcb_window_t windowUnderPointer(xcb_connection_t* connection, xcb_window_t root) {
    xcb_window_t window = root;
    for (int depth = 0; depth < maxDepth; ++depth) {
        const XcbReply<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(connection, xcb_query_pointer(connection, window), nullptr));
        if (!pointer || pointer->child == XCB_NONE) break;
        window = pointer->child;
    }
    return window;
}

/// Both names of the window's class; absent when it has none.
std::optional<WindowClass> classOf(const xcb_get_property_reply_t* property) {
    if (property == nullptr || property->type != XCB_ATOM_STRING || property->format != 8) {
        return std::nullopt;
    }
    const QByteArray names(static_cast<const char*>(xcb_get_property_value(property)),
                           xcb_get_property_value_length(property));
    const auto parts = names.split('\0');
    return WindowClass{parts.value(0), parts.value(1)};
}

}  // namespace

std::optional<xcb_window_t> windowWithFocus(xcb_connection_t* connection, xcb_window_t root) {
    const XcbReply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (!focus || focus->focus == XCB_NONE) return std::nullopt;
    if (focus->focus != XCB_INPUT_FOCUS_POINTER_ROOT && focus->focus != root) return focus->focus;
    const xcb_window_t window = windowUnderPointer(connection, root);
    if (window == root) return std::nullopt;
    return window;
}

std::optional<WindowClass> focusedWindow(xcb_connection_t* connection, xcb_window_t root) {
    const auto focused = windowWithFocus(connection, root);
    if (!focused) return std::nullopt;

    // The names are on the program's top-level window; the focus may be on one inside it.
    xcb_window_t window = *focused;
    for (int depth = 0; depth < maxDepth && window != root && window != XCB_NONE; ++depth) {
        const auto property = xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS,
                                               XCB_ATOM_STRING, 0, maxClassWords);
        const auto tree = xcb_query_tree(connection, window);
        const XcbReply<xcb_get_property_reply_t> names(
            xcb_get_property_reply(connection, property, nullptr));
        const XcbReply<xcb_query_tree_reply_t> parents(
            xcb_query_tree_reply(connection, tree, nullptr));
        if (auto found = classOf(names.get())) return found;
        if (!parents) break;
        window = parents->parent;
    }
    return WindowClass{};
}

bool isTerminal(const WindowClass& window) {
    return isAmong(terminals, window);
}

bool pastesPrimary(const WindowClass& window) {
    return isAmong(primaryTerminals, window);
}

}  // namespace quietlark
