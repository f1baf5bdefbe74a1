#include "platform/linux/x11/keys/keystroke_plan.h"

#include <string>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <xcb/xcb.h>

#include "platform/x11/keys/named_keymap.h"

using namespace quietlark;

namespace {

constexpr std::uint16_t desk = 7;
constexpr std::uint16_t xtest = 5;
constexpr RealModifiers shift = XCB_MOD_MASK_SHIFT;
constexpr RealModifiers control = XCB_MOD_MASK_CONTROL;

XKeycode x(int evdev) {
    return static_cast<XKeycode>(evdev + 8);
}

std::optional<Shortcut> paste(const X11Keymap& keymap, WindowKind window = WindowKind::ordinary,
                              X11Keymap::Layout layout = 0) {
    return findShortcut(keymap, layout, key_code::v, modifier::command, window);
}

void expectShortcut(const std::optional<Shortcut>& shortcut, int evdev, RealModifiers modifiers) {
    ASSERT_TRUE(shortcut);
    EXPECT_EQ(shortcut->key, x(evdev));
    EXPECT_EQ(shortcut->modifiers, modifiers);
}

/// "+37@7" for a key of the user's keyboard that goes down, "-50" for one of ours that goes up.
std::string describe(const std::vector<KeystrokePlan::Move>& moves) {
    std::string text;
    for (const auto& [key, pressed] : moves) {
        text += (text.empty() ? "" : " ") + std::string(pressed ? "+" : "-");
        text += std::to_string(key.keycode - 8) + (key.device == desk ? "@desk" : "");
    }
    return text;
}

struct Held {
    std::vector<int> keys;
    RealModifiers locked = 0;
};

/// The whole keystroke for Control-V, with `|` for V itself.
std::string pasteWith(const Held& held, const X11Keymap& keymap = namedKeymap("us"),
                      RealModifiers modifiers = control) {
    Keyboards keyboards{xtest, {}};
    for (const int key : held.keys)
        keyboards.down.push_back({desk, x(key)});
    KeyboardState state;
    state.locked = held.locked;
    const auto plan = planKeystroke(keymap, state, keyboards, {x(KEY_V), modifiers});
    if (!plan) return "none";
    EXPECT_EQ(plan->key, (DeviceKey{xtest, x(KEY_V)}));
    return describe(plan->before) + " | " + describe(plan->after);
}

std::string text(int key) {
    return std::to_string(key);
}

const std::string leftControl = text(KEY_LEFTCTRL);
const std::string rightControl = text(KEY_RIGHTCTRL);

std::string user(int key) {
    return text(key) + "@desk";
}

}  // namespace

TEST(FindShortcut, PasteIsControlWithTheKeyThatTypesV) {
    expectShortcut(paste(namedKeymap("us")), KEY_V, control);
    expectShortcut(paste(namedKeymap("us(dvorak)")), KEY_DOT, control);
}

TEST(FindShortcut, PasteIsControlShiftVInATerminal) {
    expectShortcut(paste(namedKeymap("us"), WindowKind::terminal), KEY_V, control | shift);
}

TEST(FindShortcut, ALayoutWithoutVBorrowsTheKeyOfAnotherLayoutOfTheKeymap) {
    expectShortcut(paste(namedKeymap("ru,us")), KEY_V, control);
    expectShortcut(paste(namedKeymap("ru,us(dvorak)")), KEY_DOT, control);
    expectShortcut(paste(namedKeymap("us(dvorak),ru"), WindowKind::ordinary, 1), KEY_DOT, control);
}

TEST(FindShortcut, PasteIsShiftInsertWhereNoLayoutHasV) {
    expectShortcut(paste(namedKeymap("ru")), KEY_INSERT, shift);
    expectShortcut(paste(namedKeymap("ru"), WindowKind::terminal), KEY_INSERT, control | shift);
}

TEST(FindShortcut, PasteIsShiftInsertInATerminalWhosePrimaryHasTheText) {
    for (const char* layout : {"us", "ru"})
        expectShortcut(paste(namedKeymap(layout), WindowKind::primaryTerminal), KEY_INSERT, shift);
}

TEST(FindShortcut, NoInsertIsTypedIntoATerminalWhosePrimaryHasSomethingElse) {
    for (const char* layout : {"us", "ru"})
        expectShortcut(paste(namedKeymap(layout), WindowKind::otherPrimaryTerminal), KEY_V,
                       control | shift);
}

TEST(FindShortcut, AnotherLetterThatNoLayoutHasIsTypedByItsPlace) {
    const auto copy =
        findShortcut(namedKeymap("ru"), 0, 8, modifier::command, WindowKind::ordinary);
    expectShortcut(copy, KEY_C, control);
}

TEST(FindShortcut, KeysThatAreNotLettersAreTypedByTheirPlace) {
    const auto undo = findShortcut(namedKeymap("de"), 0, 36, modifier::shift, WindowKind::ordinary);
    expectShortcut(undo, KEY_ENTER, shift);
}

TEST(FindShortcut, OptionIsAltAndControlStaysControl) {
    const auto both = findShortcut(namedKeymap("us"), 0, 49, modifier::option | modifier::control,
                                   WindowKind::ordinary);
    expectShortcut(both, KEY_SPACE, control | XCB_MOD_MASK_1);
}

TEST(FindShortcut, AKeyThatNoKeyboardHasIsAbsent) {
    EXPECT_FALSE(findShortcut(namedKeymap("us"), 0, 1000, 0, WindowKind::ordinary));
}

TEST(PlanKeystroke, WithNothingHeldOnlyTheModifierMoves) {
    EXPECT_EQ(pasteWith({}), "+" + leftControl + " | -" + leftControl);
}

TEST(PlanKeystroke, AHeldShiftIsLiftedBeforeAndPutBackAfterwards) {
    EXPECT_EQ(pasteWith({{KEY_LEFTSHIFT}}), "-" + user(KEY_LEFTSHIFT) + " +" + leftControl +
                                                " | -" + leftControl + " +" + user(KEY_LEFTSHIFT));
}

TEST(PlanKeystroke, AltMovesOnlyWhileControlIsDownSoThatNoMenuOpens) {
    EXPECT_EQ(pasteWith({{KEY_LEFTALT}}), "+" + leftControl + " -" + user(KEY_LEFTALT) + " | +" +
                                              user(KEY_LEFTALT) + " -" + leftControl);
}

TEST(PlanKeystroke, SuperMovesOnlyWhileControlIsDownSoThatNoLauncherOpens) {
    EXPECT_EQ(pasteWith({{KEY_LEFTMETA}}), "+" + leftControl + " -" + user(KEY_LEFTMETA) + " | +" +
                                               user(KEY_LEFTMETA) + " -" + leftControl);
}

TEST(PlanKeystroke, AHeldControlStaysAndTheOtherOneIsPressedAsWell) {
    EXPECT_EQ(pasteWith({{KEY_LEFTCTRL}}), "+" + rightControl + " | -" + rightControl);
}

TEST(PlanKeystroke, WithBothControlKeysHeldBothAreLiftedFirst) {
    EXPECT_EQ(pasteWith({{KEY_LEFTCTRL, KEY_RIGHTCTRL}}),
              "-" + user(KEY_LEFTCTRL) + " -" + user(KEY_RIGHTCTRL) + " +" + leftControl + " | -" +
                  leftControl + " +" + user(KEY_LEFTCTRL) + " +" + user(KEY_RIGHTCTRL));
}

TEST(PlanKeystroke, AltGrIsLifted) {
    EXPECT_EQ(pasteWith({{KEY_RIGHTALT}}, namedKeymap("de")),
              "-" + user(KEY_RIGHTALT) + " +" + leftControl + " | -" + leftControl + " +" +
                  user(KEY_RIGHTALT));
}

TEST(PlanKeystroke, AKeyThatShiftsTheLayoutIsLifted) {
    EXPECT_EQ(pasteWith({{KEY_RIGHTALT}}, namedKeymap("us,ru", "grp:switch")),
              "-" + user(KEY_RIGHTALT) + " +" + leftControl + " | -" + leftControl + " +" +
                  user(KEY_RIGHTALT));
}

TEST(PlanKeystroke, AHeldCapsLockIsLeftAloneBecauseLiftingItWouldSwitchIt) {
    EXPECT_EQ(pasteWith({{KEY_CAPSLOCK}}), pasteWith({}));
}

TEST(PlanKeystroke, OrdinaryHeldKeysAreLeftAlone) {
    EXPECT_EQ(pasteWith({{KEY_SPACE, KEY_A}}), pasteWith({}));
}

TEST(PlanKeystroke, TheShortcutsOwnKeyIsLiftedAndNotPutBackBecauseThatWouldTypeIt) {
    EXPECT_EQ(pasteWith({{KEY_V}}), "-" + user(KEY_V) + " +" + leftControl + " | -" + leftControl);
}

TEST(PlanKeystroke, ControlAndShiftNeverSwitchTheLayout) {
    const auto keymap = namedKeymap("us,ru", "grp:lctrl_lshift_toggle");
    EXPECT_NE(pasteWith({}, keymap, control | shift),
              pasteWith({}, namedKeymap("us"), control | shift));
}

TEST(PlanKeystroke, OnlyLocksThatShortcutsCareAboutAreUndone) {
    const auto keymap = namedKeymap("de");
    KeyboardState state;
    state.locked = XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2 | XCB_MOD_MASK_5 | control;
    const auto plan = planKeystroke(keymap, state, {xtest, {}}, {x(KEY_V), control});
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->unlocked, XCB_MOD_MASK_5);
}
