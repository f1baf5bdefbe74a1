#pragma once

#include "platform/linux/x11/keys/x11_keymap.h"

namespace quietlark {

/// The keymap of layouts such as "us(dvorak),ru", with options such as "ctrl:nocaps".
inline X11Keymap namedKeymap(const char* layouts, const char* options = "") {
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
        xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES), &xkb_context_unref);
    const xkb_rule_names names{"evdev", "pc105", layouts, "", options};
    return X11Keymap(X11Keymap::Keymap(
        xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS),
        &xkb_keymap_unref));
}

}  // namespace quietlark
