#include "platform/linux/x11/keys/x11_keymap.h"

#include <algorithm>
#include <bit>
#include <utility>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

namespace quietlark {

namespace {

constexpr RealModifiers shiftBit = XCB_MOD_MASK_SHIFT;
constexpr RealModifiers lockBit = XCB_MOD_MASK_LOCK;
constexpr RealModifiers controlBit = XCB_MOD_MASK_CONTROL;

/// A keyboard in the mind: nothing is pressed, nothing is locked but the layout.
class ImaginedKeyboard {
public:
    ImaginedKeyboard(xkb_keymap* keymap, X11Keymap::Layout layout)
        : m_layout(layout), m_state(xkb_state_new(keymap), &xkb_state_unref) {
        xkb_state_update_mask(m_state.get(), 0, 0, 0, 0, 0, layout);
    }

    void press(XKeycode key) { xkb_state_update_key(m_state.get(), key, XKB_KEY_DOWN); }
    void release(XKeycode key) { xkb_state_update_key(m_state.get(), key, XKB_KEY_UP); }

    [[nodiscard]] RealModifiers modifiers(xkb_state_component component) const {
        return static_cast<RealModifiers>(xkb_state_serialize_mods(m_state.get(), component));
    }

    [[nodiscard]] bool inItsLayout() const {
        return xkb_state_serialize_layout(m_state.get(), XKB_STATE_LAYOUT_EFFECTIVE) == m_layout;
    }

    [[nodiscard]] bool hasLocks() const {
        return modifiers(XKB_STATE_MODS_LOCKED) != 0 ||
               xkb_state_serialize_layout(m_state.get(), XKB_STATE_LAYOUT_LOCKED) != m_layout;
    }

private:
    X11Keymap::Layout m_layout;
    std::unique_ptr<xkb_state, decltype(&xkb_state_unref)> m_state;
};

}  // namespace

X11Keymap::X11Keymap(Keymap keymap) : m_keymap(std::move(keymap)) {
    const RealModifiers standard = shiftBit | lockBit | controlBit;
    m_alt = modifiersOf(XKB_KEY_Alt_L, XKB_KEY_Alt_R) & ~standard;
    const RealModifiers meta = modifiersOf(XKB_KEY_Meta_L, XKB_KEY_Meta_R);
    const RealModifiers super = modifiersOf(XKB_KEY_Super_L, XKB_KEY_Super_R);
    m_super = (meta | super) & ~(standard | m_alt);
    m_ignored = lockBit | modifiersOf(XKB_KEY_Num_Lock, XKB_KEY_Num_Lock);
}

std::optional<X11Keymap> X11Keymap::fetch(xcb_connection_t* connection, std::int32_t device) {
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
        xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES), &xkb_context_unref);
    Keymap keymap(xkb_x11_keymap_new_from_device(context.get(), connection, device,
                                                 XKB_KEYMAP_COMPILE_NO_FLAGS),
                  &xkb_keymap_unref);
    if (!keymap) return std::nullopt;
    return X11Keymap(std::move(keymap));
}

X11Keymap::Effect X11Keymap::effectOf(XKeycode key, Layout layout) const {
    ImaginedKeyboard keyboard(m_keymap.get(), layout);
    keyboard.press(key);
    Effect effect{keyboard.modifiers(XKB_STATE_MODS_DEPRESSED), !keyboard.inItsLayout(), false};
    keyboard.release(key);
    effect.locks = keyboard.hasLocks();
    return effect;
}

ModifierFlags X11Keymap::flagsHeldBy(XKeycode key, Layout layout) const {
    if (keyCodeOf(key) == key_code::function) return modifier::function;
    const RealModifiers held = effectOf(key, layout).modifiers;
    ModifierFlags flags = 0;
    if (held & shiftBit) flags |= modifier::shift;
    if (held & controlBit) flags |= modifier::control;
    if (held & m_alt) flags |= modifier::option;
    if (held & m_super) flags |= modifier::command;
    return flags;
}

RealModifiers X11Keymap::realModifiers(ModifierFlags flags) const {
    RealModifiers modifiers = 0;
    if (flags & modifier::shift) modifiers |= shiftBit;
    if (flags & modifier::control) modifiers |= controlBit;
    if (flags & modifier::option) modifiers |= m_alt;
    if (flags & modifier::command) modifiers |= m_super;
    return modifiers;
}

std::optional<XKeycode> X11Keymap::keyTyping(char character, Layout layout,
                                             XKeycode preferred) const {
    const auto types = [this, layout, symbol = xkb_utf32_to_keysym(character)](XKeycode key) {
        const xkb_keysym_t* symbols = nullptr;
        const int count =
            xkb_keymap_key_get_syms_by_level(m_keymap.get(), key, layout, 0, &symbols);
        return count == 1 && symbols[0] == symbol;
    };
    if (types(preferred)) return preferred;
    const auto all = keys();
    const auto key = std::ranges::find_if(all, types);
    if (key == all.end()) return std::nullopt;
    return *key;
}

X11Keymap::Layout X11Keymap::layouts() const {
    return xkb_keymap_num_layouts(m_keymap.get());
}

std::optional<std::vector<XKeycode>> X11Keymap::keysHolding(RealModifiers modifiers, Layout layout,
                                                            const KeyFilter& isFree) const {
    std::vector<XKeycode> candidates;
    for (const XKeycode key : keys()) {
        const RealModifiers held = effectOf(key, layout).modifiers;
        if (held != 0 && (held & ~modifiers) == 0 && isFree(key)) candidates.push_back(key);
    }
    // Every combination is tried out, since an option such as "both Control and Shift switch the
    // layout" makes a key mean something else after another one.
    std::vector<XKeycode> pressed;
    const auto complete = [&](const auto& self) -> bool {
        ImaginedKeyboard keyboard(m_keymap.get(), layout);
        for (const XKeycode key : pressed)
            keyboard.press(key);
        if (!keyboard.inItsLayout() || keyboard.hasLocks()) return false;
        if (keyboard.modifiers(XKB_STATE_MODS_EFFECTIVE) == modifiers) return true;
        if (pressed.size() >= static_cast<std::size_t>(std::popcount(modifiers))) return false;
        return std::ranges::any_of(candidates, [&](XKeycode key) {
            pressed.push_back(key);
            if (self(self)) return true;
            pressed.pop_back();
            return false;
        });
    };
    if (!complete(complete)) return std::nullopt;
    return pressed;
}

RealModifiers X11Keymap::modifiersOf(xkb_keysym_t symbol, xkb_keysym_t other) const {
    RealModifiers modifiers = 0;
    for (const XKeycode key : keys()) {
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(m_keymap.get(), key, 0, 0, &symbols);
        if (count != 1 || (symbols[0] != symbol && symbols[0] != other)) continue;
        modifiers |= effectOf(key, 0).modifiers;
    }
    return modifiers;
}

std::vector<XKeycode> X11Keymap::keys() const {
    std::vector<XKeycode> keys;
    xkb_keymap_key_for_each(
        m_keymap.get(),
        [](xkb_keymap*, xkb_keycode_t key, void* into) {
            if (key <= 0xff) static_cast<std::vector<XKeycode>*>(into)->push_back(XKeycode(key));
        },
        &keys);
    return keys;
}

}  // namespace quietlark
