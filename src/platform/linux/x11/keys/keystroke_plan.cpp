#include "platform/linux/x11/keys/keystroke_plan.h"

#include <algorithm>

#include <linux/input-event-codes.h>

namespace quietlark {

namespace {

// X numbers a key like the kernel, plus 8.
constexpr XKeycode insertKey = KEY_INSERT + 8;

std::optional<XKeycode> keyTypingInAnyLayout(const X11Keymap& keymap, X11Keymap::Layout layout,
                                             char character, XKeycode preferred) {
    if (const auto key = keymap.keyTyping(character, layout, preferred)) return key;
    for (X11Keymap::Layout other = 0; other < keymap.layouts(); ++other) {
        if (const auto key = keymap.keyTyping(character, other, preferred)) return key;
    }
    return std::nullopt;
}

/// The held keys that would spoil the shortcut.
struct Spoilers {
    std::vector<DeviceKey> plain;
    /// Alt and Super, which do something when they go down and up with nothing between: they move
    /// only while a modifier of the shortcut is down.
    std::vector<DeviceKey> masked;
};

Spoilers findSpoilers(const X11Keymap& keymap, X11Keymap::Layout layout, RealModifiers allowed,
                      const std::vector<DeviceKey>& down) {
    const RealModifiers tapped = keymap.realModifiers(modifier::option | modifier::command);
    Spoilers spoilers;
    for (const DeviceKey& key : down) {
        const auto effect = keymap.effectOf(key.keycode, layout);
        // To lift a key that locks is to unlock; and what it holds is locked anyway.
        if (effect.locks) continue;
        if ((effect.modifiers & ~allowed) == 0 && !effect.shiftsLayout) continue;
        ((effect.modifiers & tapped) != 0 ? spoilers.masked : spoilers.plain).push_back(key);
    }
    return spoilers;
}

/// The keys that make the modifiers right: ours to press, the user's to lift.
struct ModifierKeys {
    std::vector<XKeycode> ours;
    Spoilers spoilers;
};

std::optional<ModifierKeys> chooseModifierKeys(const X11Keymap& keymap, X11Keymap::Layout layout,
                                               RealModifiers wanted,
                                               const std::vector<DeviceKey>& down) {
    // Keys of our own even where the user holds the right ones, who may let go at any moment.
    const auto isFree = [&down](XKeycode key) {
        return std::ranges::find(down, key, &DeviceKey::keycode) == down.end();
    };
    if (const auto free = keymap.keysHolding(wanted, layout, isFree)) {
        return ModifierKeys{*free, findSpoilers(keymap, layout, wanted, down)};
    }
    const auto any = keymap.keysHolding(wanted, layout, [](XKeycode) { return true; });
    if (!any) return std::nullopt;
    // The user holds every key that would do, so all are lifted before one of them is pressed.
    auto [plain, masked] = findSpoilers(keymap, layout, 0, down);
    plain.insert(plain.end(), masked.begin(), masked.end());
    return ModifierKeys{*any, {plain, {}}};
}

void add(std::vector<KeystrokePlan::Move>& moves, const std::vector<DeviceKey>& keys,
         bool pressed) {
    for (const DeviceKey& key : keys)
        moves.push_back({key, pressed});
}

}  // namespace

std::optional<Shortcut> findShortcut(const X11Keymap& keymap, X11Keymap::Layout layout,
                                     KeyCode keyCode, ModifierFlags flags, WindowKind window) {
    const auto place = xKeycodeOf(keyCode);
    if (!place) return std::nullopt;
    const bool isPaste = keyCode == key_code::v && flags == modifier::command;
    const bool inTerminal = window != WindowKind::ordinary;
    const Shortcut shiftInsert{insertKey, keymap.realModifiers(modifier::shift)};
    if (isPaste && window == WindowKind::primaryTerminal) return shiftInsert;
    if (flags & modifier::command) {
        flags = (flags & ~modifier::command) | modifier::control;
        if (inTerminal) flags |= modifier::shift;
    }
    const char letter = ansiLetterOf(keyCode);
    const auto typing = letter == 0 ? place : keyTypingInAnyLayout(keymap, layout, letter, *place);
    if (typing) return Shortcut{*typing, keymap.realModifiers(flags)};
    const bool canInsert = isPaste && window != WindowKind::otherPrimaryTerminal;
    if (!canInsert) return Shortcut{*place, keymap.realModifiers(flags)};
    return inTerminal ? Shortcut{insertKey, keymap.realModifiers(flags)} : shiftInsert;
}

std::optional<KeystrokePlan> planKeystroke(const X11Keymap& keymap, const KeyboardState& state,
                                           const Keyboards& keyboards, const Shortcut& shortcut) {
    const auto keys =
        chooseModifierKeys(keymap, state.lockedLayout, shortcut.modifiers, keyboards.down);
    if (!keys) return std::nullopt;
    const auto& [plain, masked] = keys->spoilers;
    std::vector<DeviceKey> ours;
    for (const XKeycode key : keys->ours)
        ours.push_back({keyboards.xtestDevice, key});

    KeystrokePlan plan;
    plan.key = {keyboards.xtestDevice, shortcut.key};
    plan.unlocked = state.locked & ~(keymap.ignoredModifiers() | shortcut.modifiers);
    // The shortcut's own key cannot go down once more. It is not put back: that would type.
    for (const DeviceKey& key : keyboards.down) {
        if (key.keycode == shortcut.key) plan.before.push_back({key, false});
    }
    add(plan.before, plain, false);
    add(plan.before, ours, true);
    add(plan.before, masked, false);
    add(plan.after, masked, true);
    std::ranges::reverse(ours);
    add(plan.after, ours, false);
    add(plan.after, plain, true);
    plan.lifted = plain;
    plan.lifted.insert(plan.lifted.end(), masked.begin(), masked.end());
    return plan;
}

}  // namespace quietlark
