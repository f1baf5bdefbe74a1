#include "platform/linux/x11/keys/keyboards.h"

#include <array>
#include <string_view>
#include <utility>

#include <sys/uio.h>
#include <xcb/xcbext.h>
#include <xcb/xinput.h>

#include "platform/linux/x11/keys/xcb_xkb.h"
#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

namespace {

// The server's own name for the keyboard that it makes for each master's faked keys.
constexpr std::string_view xtestKeyboardName = "XTEST keyboard";

constexpr int keycodeCount = 256;

void addKeysDown(const xcb_input_query_device_state_reply_t& state, std::uint16_t device,
                 std::vector<DeviceKey>& down) {
    auto part = xcb_input_query_device_state_classes_iterator(&state);
    for (; part.rem > 0; xcb_input_input_state_next(&part)) {
        if (part.data->class_id != XCB_INPUT_INPUT_CLASS_KEY) continue;
        const auto* keys = reinterpret_cast<const xcb_input_key_state_t*>(part.data)->keys;
        for (int key = 0; key < keycodeCount; ++key) {
            if ((keys[key / 8] >> (key % 8) & 1) == 0) continue;
            down.push_back({device, static_cast<XKeycode>(key)});
        }
    }
}

}  // namespace

std::optional<Keyboards> queryKeyboards(xcb_connection_t* connection) {
    const XcbReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
        connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
    if (!devices) return std::nullopt;

    Keyboards keyboards;
    std::vector<std::pair<std::uint16_t, xcb_input_query_device_state_cookie_t>> questions;
    auto device = xcb_input_xi_query_device_infos_iterator(devices.get());
    for (; device.rem > 0; xcb_input_xi_device_info_next(&device)) {
        if (device.data->type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD) continue;
        const std::uint16_t id = device.data->deviceid;
        const std::string_view name(xcb_input_xi_device_info_name(device.data),
                                    device.data->name_len);
        // With several pairs of master devices the first one is the core keyboard's.
        if (keyboards.xtestDevice == 0 && name.ends_with(xtestKeyboardName)) {
            keyboards.xtestDevice = id;
        }
        questions.emplace_back(
            id, xcb_input_query_device_state(connection, static_cast<std::uint8_t>(id)));
    }
    for (const auto& [id, question] : questions) {
        const XcbReply<xcb_input_query_device_state_reply_t> state(
            xcb_input_query_device_state_reply(connection, question, nullptr));
        if (state) addKeysDown(*state, id, keyboards.down);
    }
    if (keyboards.xtestDevice == 0) return std::nullopt;
    return keyboards;
}

std::optional<KeyboardState> queryKeyboardState(xcb_connection_t* connection) {
    const XcbReply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        connection, xcb_xkb_get_state(connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (!state) return std::nullopt;
    return KeyboardState{state->group, state->lockedGroup, state->latchedGroup, state->latchedMods,
                         state->lockedMods};
}

void setLatchesAndLocks(xcb_connection_t* connection, const KeyboardState& state,
                        std::uint8_t mask) {
    // The library's own function for the request takes no latched modifiers: it believes their
    // byte to be padding.
    xcb_xkb_latch_lock_state_request_t request{};
    request.deviceSpec = XCB_XKB_ID_USE_CORE_KBD;
    request.affectModLocks = mask;
    request.modLocks = state.locked;
    request.affectModLatches = 0xff;
    request.pad0 = state.latched;
    request.latchGroup = 1;
    request.groupLatch = static_cast<std::uint16_t>(state.latchedLayout);
    xcb_protocol_request_t protocol{};
    protocol.count = 1;
    protocol.ext = &xcb_xkb_id;
    protocol.opcode = XCB_XKB_LATCH_LOCK_STATE;
    protocol.isvoid = 1;
    // The library wants two spare entries in front of what it sends.
    std::array<iovec, 3> parts{};
    parts[2] = {&request, sizeof request};
    xcb_send_request(connection, 0, &parts[2], &protocol);
}

}  // namespace quietlark
