#pragma once

#include <functional>
#include <map>
#include <optional>

#include <QObject>

#include "platform/key_event_source.h"
#include "platform/linux/x11/keys/key_monitors.h"
#include "platform/linux/x11/keys/keyboards.h"
#include "platform/linux/x11/keys/x11_key_connection.h"
#include "platform/linux/x11/keys/x11_keymap.h"

namespace quietlark {

/// Watches the keyboard by XInput's raw events, without grabbing it, also while another program
/// holds a grab.
///
/// Ordinary keys have the code of their place. A modifier key is what the keymap makes of it: Caps
/// Lock as Control holds Control, a Caps Lock that types Escape is an ordinary key, and AltGr holds
/// nothing, because it types characters. A key without a code is reported only if the keymap makes
/// it hold a modifier, and then as the left-hand key of that modifier.
class X11KeyEventSource final : public QObject, public KeyEventSource {
    Q_OBJECT

public:
    /// `ownWindowHasFocus` tells whether a key is bound for this application.
    X11KeyEventSource(X11KeyConnection& connection, std::function<bool()> ownWindowHasFocus);

    [[nodiscard]] Cancellable addMonitor(Scope scope, KeyEventMask mask, Handler handler) override;
    [[nodiscard]] std::optional<Unavailable> unavailable() const override;

private:
    /// What a key is as long as it is down, whatever becomes of the keymap meanwhile.
    struct Role {
        bool isModifier = false;
        ModifierFlags flags = 0;
    };

    void handleRawKey(const RawKeyEvent& event, X11Keymap::Layout layout);
    void refreshKeymap();
    [[nodiscard]] Role roleOf(XKeycode key, X11Keymap::Layout layout) const;
    [[nodiscard]] ModifierFlags flagsHeld() const;

    X11KeyConnection& m_connection;
    std::function<bool()> m_ownWindowHasFocus;
    KeyMonitors m_monitors;
    std::optional<X11Keymap> m_keymap;
    bool m_keymapIsStale = true;
    std::map<DeviceKey, Role> m_down;
};

}  // namespace quietlark
