#include "latency/keyboard.h"

#include <poll.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include "platform/linux/x11/xcb_reply.h"

namespace quietlark::benchmark {

namespace {

xcb_window_t rootOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

void selectRawKeys(xcb_connection_t* connection) {
    XcbReply<xcb_input_xi_query_version_reply_t>(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t events;
    } mask{};
    mask.head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    mask.head.mask_len = 1;
    mask.events = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    xcb_input_xi_select_events(connection, rootOf(connection), 1, &mask.head);
    // An answer to anything sent later means that the selection holds.
    XcbReply<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace

Fingers::Fingers(const QByteArray& display)
    : m_connection(xcb_connect(display.constData(), nullptr)) {}

void Fingers::move(std::uint8_t type, std::uint8_t keycode) {
    xcb_test_fake_input(m_connection.get(), type, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(m_connection.get());
}

KeyWatcher::KeyWatcher(const QByteArray& display, Handler handler)
    : m_handler(std::move(handler)), m_connection(xcb_connect(display.constData(), nullptr)) {
    selectRawKeys(m_connection.get());
    m_thread = std::thread([this] { watch(); });
}

KeyWatcher::~KeyWatcher() {
    m_ending = true;
    m_thread.join();
}

void KeyWatcher::watch() {
    pollfd readable{xcb_get_file_descriptor(m_connection.get()), POLLIN, 0};
    while (!m_ending && !xcb_connection_has_error(m_connection.get())) {
        if (poll(&readable, 1, 50) <= 0) continue;
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
            const auto seen = Clock::now();
            if ((event->response_type & 0x7f) != XCB_GE_GENERIC) continue;
            const auto* raw = reinterpret_cast<const xcb_input_raw_key_press_event_t*>(event.get());
            m_handler(raw->event_type == XCB_INPUT_RAW_KEY_PRESS,
                      static_cast<std::uint8_t>(raw->detail), seen);
        }
    }
}

}  // namespace quietlark::benchmark
