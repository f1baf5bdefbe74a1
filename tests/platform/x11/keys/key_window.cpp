#include "platform/x11/keys/key_window.h"

#include <algorithm>
#include <ostream>

#include <linux/input-event-codes.h>

#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

namespace {

bool isModifier(const KeyWindow::Key& key) {
    constexpr int modifiers[] = {KEY_LEFTCTRL,   KEY_RIGHTCTRL, KEY_LEFTSHIFT,
                                 KEY_RIGHTSHIFT, KEY_LEFTALT,   KEY_RIGHTALT,
                                 KEY_LEFTMETA,   KEY_RIGHTMETA, KEY_CAPSLOCK};
    return std::ranges::find(modifiers, key.xKeycode - 8) != std::end(modifiers);
}

}  // namespace

KeyWindow::KeyWindow(const QByteArray& display, const QByteArray& className)
    : m_connection(xcb_connect(display.constData(), nullptr)) {
    m_window = createWindow(xcb_setup_roots_iterator(xcb_get_setup(xcb())).data->root);
    if (!className.isEmpty()) {
        const QByteArray names = className.toLower() + '\0' + className + '\0';
        xcb_change_property(xcb(), XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS,
                            XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(names.size()),
                            names.constData());
    }
    finish();
}

void KeyWindow::takeFocus() {
    focus(m_window);
}

void KeyWindow::takeFocusWithAChild() {
    focus(createWindow(createWindow(m_window)));
}

void KeyWindow::dropFocus() {
    focus(XCB_NONE);
}

void KeyWindow::letFocusFollowPointer() {
    focus(XCB_INPUT_FOCUS_POINTER_ROOT);
}

std::vector<KeyWindow::Key> KeyWindow::typed() {
    auto keys = events();
    std::erase_if(keys, [](const Key& key) { return !key.pressed || isModifier(key); });
    return keys;
}

std::vector<KeyWindow::Key> KeyWindow::events() {
    finish();
    std::vector<Key> keys;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(xcb())}) {
        const int type = event->response_type;
        if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) continue;
        const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(*event);
        keys.push_back({key.detail, key.state, type == XCB_KEY_PRESS});
    }
    return keys;
}

xcb_window_t KeyWindow::createWindow(xcb_window_t parent) {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(xcb())).data;
    const xcb_window_t window = xcb_generate_id(xcb());
    const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    xcb_create_window(xcb(), XCB_COPY_FROM_PARENT, window, parent, 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_EVENT_MASK,
                      &events);
    xcb_map_window(xcb(), window);
    return window;
}

void KeyWindow::focus(xcb_window_t window) {
    xcb_set_input_focus(xcb(), XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
    finish();
}

void KeyWindow::finish() const {
    const XcbReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr));
}

void PrintTo(const KeyWindow::Key& key, std::ostream* stream) {
    *stream << (key.pressed ? "press " : "release ") << int(key.xKeycode) << " state " << key.state;
}

}  // namespace quietlark
