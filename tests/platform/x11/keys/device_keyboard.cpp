#include "platform/x11/keys/device_keyboard.h"

#include <array>
#include <string_view>

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

DeviceKeyboard::DeviceKeyboard(const QByteArray& display)
    : m_connection(xcb_connect(display.constData(), nullptr)),
      m_firstEvent(xcb_get_extension_data(xcb(), &xcb_input_id)->first_event) {
    // The server knows XInput 2's devices only for a client that says that it speaks it.
    const XcbReply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(xcb(), xcb_input_xi_query_version(xcb(), 2, 2), nullptr));
    const XcbReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
        xcb(), xcb_input_xi_query_device(xcb(), XCB_INPUT_DEVICE_ALL), nullptr));
    auto device = xcb_input_xi_query_device_infos_iterator(devices.get());
    for (; device.rem > 0; xcb_input_xi_device_info_next(&device)) {
        const std::string_view name(xcb_input_xi_device_info_name(device.data),
                                    device.data->name_len);
        if (device.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD &&
            name.find("XTEST") == std::string_view::npos) {
            m_device = static_cast<std::uint8_t>(device.data->deviceid);
        }
    }
}

bool DeviceKeyboard::isDown(std::uint8_t xKeycode) const {
    const XcbReply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(xcb(), xcb_query_keymap(xcb()), nullptr));
    return keys && (keys->keys[xKeycode / 8] >> (xKeycode % 8) & 1) != 0;
}

std::uint8_t DeviceKeyboard::modifiers() const {
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(xcb())).data->root;
    const XcbReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(xcb(), xcb_query_pointer(xcb(), root), nullptr));
    return pointer ? static_cast<std::uint8_t>(pointer->mask) : 0;
}

void DeviceKeyboard::grab() {
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(xcb())).data->root;
    const XcbReply<xcb_grab_keyboard_reply_t> grab(
        xcb_grab_keyboard_reply(xcb(),
                                xcb_grab_keyboard(xcb(), 0, root, XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
}

void DeviceKeyboard::unplug() {
    constexpr std::string_view name = "Device Enabled";
    const XcbReply<xcb_intern_atom_reply_t> enabled(
        xcb_intern_atom_reply(xcb(), xcb_intern_atom(xcb(), 1, name.size(), name.data()), nullptr));
    // xcb sends what fills up the last four bytes along.
    constexpr std::array<std::uint8_t, 4> no{};
    xcb_input_xi_change_property(xcb(), m_device, XCB_PROP_MODE_REPLACE,
                                 XCB_INPUT_PROPERTY_FORMAT_8_BITS, enabled->atom, XCB_ATOM_INTEGER,
                                 1, no.data());
    finish();
}

void DeviceKeyboard::move(std::uint8_t xKeycode, bool pressed) {
    const int type =
        m_firstEvent + (pressed ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE);
    xcb_test_fake_input(xcb(), static_cast<std::uint8_t>(type), xKeycode, XCB_CURRENT_TIME,
                        XCB_NONE, 0, 0, m_device);
    finish();
}

void DeviceKeyboard::finish() const {
    const XcbReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr));
}

}  // namespace quietlark
