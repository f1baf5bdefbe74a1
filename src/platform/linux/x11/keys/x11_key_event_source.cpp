#include "platform/linux/x11/keys/x11_key_event_source.h"

#include <utility>

#include <xkbcommon/xkbcommon-x11.h>

namespace quietlark {

namespace {

/// The left-hand key that holds one of the flags; absent when there are none.
std::optional<KeyCode> leftKeyHolding(ModifierFlags flags) {
    for (const KeyCode key :
         {key_code::control, key_code::option, key_code::command, key_code::shift}) {
        if (flags & flagOfModifierKey(key)) return key;
    }
    return std::nullopt;
}

}  // namespace

X11KeyEventSource::X11KeyEventSource(X11KeyConnection& connection,
                                     std::function<bool()> ownWindowHasFocus)
    : m_connection(connection), m_ownWindowHasFocus(std::move(ownWindowHasFocus)) {
    connect(&connection, &X11KeyConnection::rawKey, this, &X11KeyEventSource::handleRawKey);
    connect(&connection, &X11KeyConnection::keymapChanged, this,
            [this] { m_keymapIsStale = true; });
    if (unavailable()) return;
    refreshKeymap();
    const auto keyboards = queryKeyboards(connection.xcb());
    const auto state = queryKeyboardState(connection.xcb());
    connection.deliverSoon();
    if (!keyboards || !state) return;
    for (const DeviceKey& key : keyboards->down) {
        m_down[key] = roleOf(key.keycode, state->layout);
    }
}

Cancellable X11KeyEventSource::addMonitor(Scope scope, KeyEventMask mask, Handler handler) {
    return m_monitors.add(scope, mask, std::move(handler));
}

std::optional<Unavailable> X11KeyEventSource::unavailable() const {
    return m_connection.cannotObserve();
}

void X11KeyEventSource::handleRawKey(const RawKeyEvent& event, X11Keymap::Layout layout) {
    if (std::exchange(m_keymapIsStale, false)) refreshKeymap();

    const DeviceKey key{event.device, event.keycode};
    Role role;
    if (event.pressed) {
        role = roleOf(event.keycode, layout);
        m_down[key] = role;
    } else {
        const auto wasDown = m_down.extract(key);
        role = wasDown ? wasDown.mapped() : roleOf(event.keycode, layout);
    }

    auto keyCode = keyCodeOf(event.keycode);
    // A hotkey is to know of every modifier, also of a Control on a key that macOS does not have.
    if (!keyCode) keyCode = leftKeyHolding(role.flags);
    if (!keyCode) return;
    const auto kind = role.isModifier ? KeyEvent::Kind::FlagsChanged
                      : event.pressed ? KeyEvent::Kind::KeyDown
                                      : KeyEvent::Kind::KeyUp;
    m_monitors.report(m_ownWindowHasFocus() ? Scope::Local : Scope::Global,
                      {kind, *keyCode, flagsHeld()});
}

void X11KeyEventSource::refreshKeymap() {
    xcb_connection_t* const xcb = m_connection.xcb();
    m_keymap = X11Keymap::fetch(xcb, xkb_x11_get_core_keyboard_device_id(xcb));
}

X11KeyEventSource::Role X11KeyEventSource::roleOf(XKeycode key, X11Keymap::Layout layout) const {
    const KeyCode place = keyCodeOf(key).value_or(0);
    if (!m_keymap) return {isModifierKey(place), flagOfModifierKey(place)};
    const ModifierFlags flags = m_keymap->flagsHeldBy(key, layout);
    const bool modifies = m_keymap->effectOf(key, layout).modifiers != 0;
    return {flags != 0 || (modifies && isModifierKey(place)), flags};
}

ModifierFlags X11KeyEventSource::flagsHeld() const {
    ModifierFlags flags = 0;
    for (const auto& [key, role] : m_down)
        flags |= role.flags;
    return flags;
}

}  // namespace quietlark
