#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <xkbcommon/xkbcommon.h>

#include "platform/keys.h"
#include "platform/linux/x11/keys/evdev_key_codes.h"

struct xcb_connection_t;

namespace quietlark {

/// The eight real modifiers of X, one bit each, as in the state of a key event.
using RealModifiers = std::uint8_t;

/// What the keys of a keyboard mean: a snapshot of its XKB keymap.
class X11Keymap {
public:
    using Keymap = std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)>;
    using Layout = xkb_layout_index_t;
    using KeyFilter = std::function<bool(XKeycode)>;

    /// What pressing a key alone does, until it is released.
    struct Effect {
        RealModifiers modifiers = 0;  ///< held down
        bool shiftsLayout = false;    ///< another layout while it is down
        bool locks = false;           ///< leaves a lock or a layout behind, like Caps Lock
    };

    explicit X11Keymap(Keymap keymap);

    /// Asks the server for the keymap of an input device; absent when it cannot be had.
    [[nodiscard]] static std::optional<X11Keymap> fetch(xcb_connection_t* connection,
                                                        std::int32_t device);

    [[nodiscard]] Effect effectOf(XKeycode key, Layout layout) const;

    /// The flags that the key holds while it is down. Option is what Alt is (AltGr types characters
    /// and is none), Command what Super is, or Meta where that is not Alt; the Fn key is Function.
    [[nodiscard]] ModifierFlags flagsHeldBy(XKeycode key, Layout layout) const;

    /// The real modifiers that stand for the flags; there is none for Function.
    [[nodiscard]] RealModifiers realModifiers(ModifierFlags flags) const;

    /// Modifiers that no shortcut cares about: Caps Lock and Num Lock.
    [[nodiscard]] RealModifiers ignoredModifiers() const { return m_ignored; }

    /// The key that types the character in the layout without any modifier; among several the one
    /// that is `preferred`, else the first.
    [[nodiscard]] std::optional<XKeycode> keyTyping(char character, Layout layout,
                                                    XKeycode preferred) const;

    [[nodiscard]] Layout layouts() const;

    /// Keys, in the order of pressing, that hold exactly these modifiers and leave the layout as it
    /// is; only keys that `isFree` allows. Absent when there are none.
    [[nodiscard]] std::optional<std::vector<XKeycode>> keysHolding(RealModifiers modifiers,
                                                                   Layout layout,
                                                                   const KeyFilter& isFree) const;

private:
    /// The real modifiers of all keys that bear one of the two symbols.
    [[nodiscard]] RealModifiers modifiersOf(xkb_keysym_t symbol, xkb_keysym_t other) const;
    [[nodiscard]] std::vector<XKeycode> keys() const;

    Keymap m_keymap;
    RealModifiers m_alt = 0;
    RealModifiers m_super = 0;
    RealModifiers m_ignored = 0;
};

}  // namespace quietlark
