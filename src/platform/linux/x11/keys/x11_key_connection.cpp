#include "platform/linux/x11/keys/x11_key_connection.h"

#include <utility>

#include <xcb/xinput.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-x11.h>

#include "platform/linux/x11/keys/keyboards.h"
#include "platform/linux/x11/keys/xcb_xkb.h"
#include "platform/linux/x11/xcb_reply.h"

namespace quietlark {

namespace {

// A client that asks for less than 2.1 gets no raw events while somebody holds a grab.
constexpr std::uint16_t inputMajorVersion = 2;
constexpr std::uint16_t inputMinorVersion = 1;

constexpr std::uint8_t eventTypeMask = 0x7f;  // the other bit says that a client has sent it

bool hasExtension(xcb_connection_t* connection, xcb_extension_t& extension) {
    const auto* data = xcb_get_extension_data(connection, &extension);
    return data != nullptr && data->present != 0;
}

}  // namespace

X11KeyConnection::X11KeyConnection(const QByteArray& display) {
    int screenNumber = 0;
    m_connection.reset(
        xcb_connect(display.isEmpty() ? nullptr : display.constData(), &screenNumber));
    if (xcb_connection_has_error(xcb()) != 0) return;

    auto screen = xcb_setup_roots_iterator(xcb_get_setup(xcb()));
    for (; screenNumber > 0 && screen.rem > 1; --screenNumber)
        xcb_screen_next(&screen);
    m_root = screen.data->root;
    m_hasXtest = hasExtension(xcb(), xcb_test_id);
    observeKeys();
    observeKeymap();

    m_notifier.emplace(xcb_get_file_descriptor(xcb()), QSocketNotifier::Read);
    connect(&*m_notifier, &QSocketNotifier::activated, this, &X11KeyConnection::deliver);
    xcb_flush(xcb());
    deliverSoon();
}

void X11KeyConnection::deliverSoon() {
    QMetaObject::invokeMethod(this, &X11KeyConnection::deliver, Qt::QueuedConnection);
}

std::optional<Unavailable> X11KeyConnection::cannotObserve() const {
    if (m_root == XCB_NONE) {
        return Unavailable{
            tr("There is no X11 display to watch the keyboard on: log in to an X11 "
               "session and start Quietlark there.")};
    }
    if (xcb_connection_has_error(xcb()) != 0) {
        return Unavailable{tr("The connection to the X server was lost: start Quietlark again.")};
    }
    if (!m_hasRawEvents) {
        return Unavailable{
            tr("This X server cannot report keys to a program in the background: "
               "use one that has XInput 2.1 or newer.")};
    }
    return std::nullopt;
}

std::optional<Unavailable> X11KeyConnection::cannotSynthesize() const {
    // Faking keys needs to know which ones are held, so it needs everything that observing needs.
    if (auto reason = cannotObserve()) return reason;
    if (!m_hasXtest) {
        return Unavailable{
            tr("This X server does not let programs type: switch on its XTEST "
               "extension and start Quietlark again.")};
    }
    return std::nullopt;
}

void X11KeyConnection::fakeKey(std::uint16_t device, XKeycode key, bool pressed) {
    // XInput's own event types in place of the core ones make XTEST act on the named device.
    const int type =
        m_inputFirstEvent + (pressed ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE);
    const auto cookie =
        xcb_test_fake_input(xcb(), static_cast<std::uint8_t>(type), key, XCB_CURRENT_TIME, XCB_NONE,
                            0, 0, static_cast<std::uint8_t>(device));
    m_own.expect({cookie.sequence, device, key, pressed});
}

std::vector<X11KeyConnection::ObservedKey> X11KeyConnection::finishRequests() {
    const XcbReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr));
    readEvents();
    deliverSoon();
    return {m_undelivered.begin(), m_undelivered.end()};
}

void X11KeyConnection::observeKeys() {
    if (!hasExtension(xcb(), xcb_input_id)) return;
    const auto* input = xcb_get_extension_data(xcb(), &xcb_input_id);
    m_inputOpcode = input->major_opcode;
    m_inputFirstEvent = input->first_event;
    const XcbReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        xcb(), xcb_input_xi_query_version(xcb(), inputMajorVersion, inputMinorVersion), nullptr));
    if (!version || std::pair(version->major_version, version->minor_version) <
                        std::pair(inputMajorVersion, inputMinorVersion)) {
        return;
    }
    // Asked of all devices instead of all masters, the server would report every key twice.
    const struct {
        xcb_input_event_mask_t header{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t mask =
            XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    } selection;
    xcb_input_xi_select_events(xcb(), m_root, 1, &selection.header);
    m_hasRawEvents = true;
}

void X11KeyConnection::observeKeymap() {
    const int started = xkb_x11_setup_xkb_extension(
        xcb(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
        XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &m_xkbFirstEvent, nullptr);
    if (started == 0) return;
    constexpr std::uint16_t mapEvents =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t everyMapPart = 0xff;
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
    details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(xcb(), XCB_XKB_ID_USE_CORE_KBD,
                              mapEvents | XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, mapEvents,
                              everyMapPart, everyMapPart, &details);
    m_layout = queryKeyboardState(xcb()).value_or(KeyboardState{}).layout;
}

void X11KeyConnection::deliver() {
    readEvents();
    while (!m_undelivered.empty()) {
        const ObservedKey key = m_undelivered.front();
        m_undelivered.pop_front();
        if (!key.ours) Q_EMIT rawKey(key.event, key.layout);
        readEvents();
    }
    const bool isWatching = m_notifier && m_notifier->isEnabled();
    if (!isWatching || xcb_connection_has_error(xcb()) == 0) return;
    m_notifier->setEnabled(false);
    Q_EMIT displayLost();
}

void X11KeyConnection::readEvents() {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(xcb())})
        read(*event);
}

void X11KeyConnection::read(const xcb_generic_event_t& event) {
    const int type = event.response_type & eventTypeMask;
    if (m_xkbFirstEvent != 0 && type == m_xkbFirstEvent) {
        readKeymapEvent(event);
        return;
    }
    if (type != XCB_GE_GENERIC) return;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != m_inputOpcode) return;
    if (generic.event_type != XCB_INPUT_RAW_KEY_PRESS &&
        generic.event_type != XCB_INPUT_RAW_KEY_RELEASE) {
        return;
    }
    const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    const RawKeyEvent key{raw.full_sequence, raw.sourceid, static_cast<XKeycode>(raw.detail),
                          generic.event_type == XCB_INPUT_RAW_KEY_PRESS};
    m_undelivered.push_back({key, m_layout, m_own.claim(key)});
}

void X11KeyConnection::readKeymapEvent(const xcb_generic_event_t& event) {
    const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    if (state.xkbType == XCB_XKB_STATE_NOTIFY) {
        m_layout = state.group;
    } else {
        Q_EMIT keymapChanged();
    }
}

}  // namespace quietlark
