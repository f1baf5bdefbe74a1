#include "platform/linux/x11/keys/x11_keymap.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <xcb/xcb.h>

#include "platform/x11/keys/named_keymap.h"

using namespace quietlark;

namespace {

XKeycode x(int evdev) {
    return static_cast<XKeycode>(evdev + 8);
}

ModifierFlags flags(const X11Keymap& map, int evdev, X11Keymap::Layout layout = 0) {
    return map.flagsHeldBy(x(evdev), layout);
}

bool anyKey(XKeycode) {
    return true;
}

const RealModifiers control = XCB_MOD_MASK_CONTROL;
const RealModifiers controlShift = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT;

}  // namespace

TEST(X11Keymap, ModifierKeysHoldTheirFlagsOnBothSides) {
    const auto us = namedKeymap("us");
    for (const int key : {KEY_LEFTSHIFT, KEY_RIGHTSHIFT})
        EXPECT_EQ(flags(us, key), modifier::shift);
    for (const int key : {KEY_LEFTCTRL, KEY_RIGHTCTRL})
        EXPECT_EQ(flags(us, key), modifier::control);
    for (const int key : {KEY_LEFTALT, KEY_RIGHTALT})
        EXPECT_EQ(flags(us, key), modifier::option);
    for (const int key : {KEY_LEFTMETA, KEY_RIGHTMETA})
        EXPECT_EQ(flags(us, key), modifier::command);
}

TEST(X11Keymap, OrdinaryKeysAndCapsLockHoldNoFlag) {
    const auto us = namedKeymap("us");
    for (const int key : {KEY_A, KEY_SPACE, KEY_CAPSLOCK, KEY_NUMLOCK})
        EXPECT_EQ(flags(us, key), 0u);
}

TEST(X11Keymap, TheFnKeyHoldsFunction) {
    EXPECT_EQ(flags(namedKeymap("us"), KEY_WAKEUP), modifier::function);
}

TEST(X11Keymap, AltGrTypesCharactersAndIsNoOption) {
    const auto german = namedKeymap("de");
    EXPECT_EQ(flags(german, KEY_RIGHTALT), 0u);
    EXPECT_EQ(flags(german, KEY_LEFTALT), modifier::option);
    EXPECT_NE(german.effectOf(x(KEY_RIGHTALT), 0).modifiers, 0);
}

TEST(X11Keymap, RightAltIsOptionOnlyInTheLayoutWhereItIsAlt) {
    const auto both = namedKeymap("us,de");
    EXPECT_EQ(flags(both, KEY_RIGHTALT, 0), modifier::option);
    EXPECT_EQ(flags(both, KEY_RIGHTALT, 1), 0u);
}

TEST(X11Keymap, CapsLockAsControlHoldsControl) {
    EXPECT_EQ(flags(namedKeymap("us", "ctrl:nocaps"), KEY_CAPSLOCK), modifier::control);
    EXPECT_EQ(flags(namedKeymap("us", "caps:ctrl_modifier"), KEY_CAPSLOCK), modifier::control);
}

TEST(X11Keymap, SwappedControlAndCapsLockAreSwapped) {
    const auto swapped = namedKeymap("us", "ctrl:swapcaps");
    EXPECT_EQ(flags(swapped, KEY_CAPSLOCK), modifier::control);
    EXPECT_EQ(flags(swapped, KEY_LEFTCTRL), 0u);
}

TEST(X11Keymap, SwappedAltAndWinAreSwapped) {
    const auto swapped = namedKeymap("us", "altwin:swap_alt_win");
    EXPECT_EQ(flags(swapped, KEY_LEFTMETA), modifier::option);
    EXPECT_EQ(flags(swapped, KEY_LEFTALT), modifier::command);
}

TEST(X11Keymap, WinKeysThatAreMetaHoldCommand) {
    EXPECT_EQ(flags(namedKeymap("us", "altwin:meta_win"), KEY_LEFTMETA), modifier::command);
}

TEST(X11Keymap, CapsLockLocksAndControlDoesNot) {
    const auto us = namedKeymap("us");
    EXPECT_TRUE(us.effectOf(x(KEY_CAPSLOCK), 0).locks);
    EXPECT_FALSE(us.effectOf(x(KEY_LEFTCTRL), 0).locks);
}

TEST(X11Keymap, AKeyMayShiftTheLayoutWhileItIsDown) {
    const auto both = namedKeymap("us,ru", "grp:switch");
    EXPECT_TRUE(both.effectOf(x(KEY_RIGHTALT), 0).shiftsLayout);
    EXPECT_FALSE(both.effectOf(x(KEY_RIGHTALT), 0).locks);
}

TEST(X11Keymap, TheLetterVIsWhereTheLayoutHasIt) {
    EXPECT_EQ(namedKeymap("us").keyTyping('v', 0, x(KEY_V)), x(KEY_V));
    EXPECT_EQ(namedKeymap("us(dvorak)").keyTyping('v', 0, x(KEY_V)), x(KEY_DOT));
    EXPECT_EQ(namedKeymap("de(neo)").keyTyping('v', 0, x(KEY_V)), x(KEY_W));
    EXPECT_EQ(namedKeymap("ru,us").keyTyping('v', 0, x(KEY_V)), std::nullopt);
    EXPECT_EQ(namedKeymap("ru,us").keyTyping('v', 1, x(KEY_V)), x(KEY_V));
}

TEST(X11Keymap, ControlIsHeldByAFreeControlKey) {
    const auto us = namedKeymap("us");
    EXPECT_EQ(us.keysHolding(control, 0, anyKey), std::vector{x(KEY_LEFTCTRL)});
    const auto leftIsHeld = [](XKeycode key) { return key != x(KEY_LEFTCTRL); };
    EXPECT_EQ(us.keysHolding(control, 0, leftIsHeld), std::vector{x(KEY_RIGHTCTRL)});
}

TEST(X11Keymap, NothingHoldsControlWhereThereIsNoFreeKeyForIt) {
    EXPECT_EQ(namedKeymap("us").keysHolding(control, 0, [](XKeycode) { return false; }),
              std::nullopt);
}

TEST(X11Keymap, NoModifierNeedsNoKey) {
    EXPECT_EQ(namedKeymap("us").keysHolding(0, 0, anyKey), std::vector<XKeycode>{});
}

TEST(X11Keymap, ControlAndShiftAreHeldWithoutSwitchingTheLayout) {
    const auto free = namedKeymap("us,ru").keysHolding(controlShift, 0, anyKey);
    EXPECT_EQ(free, (std::vector{x(KEY_LEFTCTRL), x(KEY_LEFTSHIFT)}));
    const auto left =
        namedKeymap("us,ru", "grp:lctrl_lshift_toggle").keysHolding(controlShift, 0, anyKey);
    ASSERT_TRUE(left);
    EXPECT_NE(*left, (std::vector{x(KEY_LEFTCTRL), x(KEY_LEFTSHIFT)}));
}
