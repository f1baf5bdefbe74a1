#include "platform/linux/x11/keys/evdev_key_codes.h"

#include <set>
#include <string>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

using namespace quietlark;

namespace {

struct Expected {
    const char* token;
    int evdev;
    KeyCode keyCode;
};

/// Every key that a hotkey can name, with the key in its place on an ANSI keyboard.
constexpr Expected hotkeyKeys[] = {
    {"a", KEY_A, 0},
    {"s", KEY_S, 1},
    {"d", KEY_D, 2},
    {"f", KEY_F, 3},
    {"h", KEY_H, 4},
    {"g", KEY_G, 5},
    {"z", KEY_Z, 6},
    {"x", KEY_X, 7},
    {"c", KEY_C, 8},
    {"v", KEY_V, 9},
    {"b", KEY_B, 11},
    {"q", KEY_Q, 12},
    {"w", KEY_W, 13},
    {"e", KEY_E, 14},
    {"r", KEY_R, 15},
    {"y", KEY_Y, 16},
    {"t", KEY_T, 17},
    {"o", KEY_O, 31},
    {"u", KEY_U, 32},
    {"i", KEY_I, 34},
    {"p", KEY_P, 35},
    {"l", KEY_L, 37},
    {"j", KEY_J, 38},
    {"k", KEY_K, 40},
    {"n", KEY_N, 45},
    {"m", KEY_M, 46},
    {"1", KEY_1, 18},
    {"2", KEY_2, 19},
    {"3", KEY_3, 20},
    {"4", KEY_4, 21},
    {"6", KEY_6, 22},
    {"5", KEY_5, 23},
    {"9", KEY_9, 25},
    {"7", KEY_7, 26},
    {"8", KEY_8, 28},
    {"0", KEY_0, 29},
    {"=", KEY_EQUAL, 24},
    {"-", KEY_MINUS, 27},
    {"]", KEY_RIGHTBRACE, 30},
    {"[", KEY_LEFTBRACE, 33},
    {"'", KEY_APOSTROPHE, 39},
    {";", KEY_SEMICOLON, 41},
    {"\\", KEY_BACKSLASH, 42},
    {",", KEY_COMMA, 43},
    {"/", KEY_SLASH, 44},
    {".", KEY_DOT, 47},
    {"`", KEY_GRAVE, 50},
    {"return", KEY_ENTER, 36},
    {"enter", KEY_ENTER, 36},
    {"tab", KEY_TAB, 48},
    {"space", KEY_SPACE, 49},
    {"delete", KEY_BACKSPACE, 51},
    {"backspace", KEY_BACKSPACE, 51},
    {"escape", KEY_ESC, 53},
    {"esc", KEY_ESC, 53},
    {"f1", KEY_F1, 122},
    {"f2", KEY_F2, 120},
    {"f3", KEY_F3, 99},
    {"f4", KEY_F4, 118},
    {"f5", KEY_F5, 96},
    {"f6", KEY_F6, 97},
    {"f7", KEY_F7, 98},
    {"f8", KEY_F8, 100},
    {"f9", KEY_F9, 101},
    {"f10", KEY_F10, 109},
    {"f11", KEY_F11, 103},
    {"f12", KEY_F12, 111},
    {"f13", KEY_F13, 105},
    {"f14", KEY_F14, 107},
    {"f15", KEY_F15, 113},
    {"f16", KEY_F16, 106},
    {"f17", KEY_F17, 64},
    {"f18", KEY_F18, 79},
    {"f19", KEY_F19, 80},
    {"f20", KEY_F20, 90},
    {"home", KEY_HOME, 115},
    {"pageup", KEY_PAGEUP, 116},
    {"end", KEY_END, 119},
    {"pagedown", KEY_PAGEDOWN, 121},
    {"left", KEY_LEFT, 123},
    {"right", KEY_RIGHT, 124},
    {"down", KEY_DOWN, 125},
    {"up", KEY_UP, 126},
};

XKeycode x(int evdev) {
    return static_cast<XKeycode>(evdev + 8);
}

}  // namespace

TEST(EvdevKeyCodes, EveryHotkeyTokenHasTheKeyInItsPlace) {
    EXPECT_EQ(std::size(hotkeyKeys), 83u);
    for (const auto& [token, evdev, keyCode] : hotkeyKeys) {
        EXPECT_EQ(keyCodeOf(x(evdev)), keyCode) << token;
        EXPECT_EQ(xKeycodeOf(keyCode), x(evdev)) << token;
    }
}

TEST(EvdevKeyCodes, ModifierKeysAreToldApartBySide) {
    EXPECT_EQ(keyCodeOf(x(KEY_LEFTMETA)), key_code::command);
    EXPECT_EQ(keyCodeOf(x(KEY_RIGHTMETA)), key_code::rightCommand);
    EXPECT_EQ(keyCodeOf(x(KEY_LEFTSHIFT)), key_code::shift);
    EXPECT_EQ(keyCodeOf(x(KEY_RIGHTSHIFT)), key_code::rightShift);
    EXPECT_EQ(keyCodeOf(x(KEY_LEFTALT)), key_code::option);
    EXPECT_EQ(keyCodeOf(x(KEY_RIGHTALT)), key_code::rightOption);
    EXPECT_EQ(keyCodeOf(x(KEY_LEFTCTRL)), key_code::control);
    EXPECT_EQ(keyCodeOf(x(KEY_RIGHTCTRL)), key_code::rightControl);
    EXPECT_EQ(keyCodeOf(x(KEY_CAPSLOCK)), key_code::capsLock);
}

TEST(EvdevKeyCodes, WakeUpIsHowALaptopReportsItsFnKey) {
    EXPECT_EQ(keyCodeOf(x(KEY_WAKEUP)), key_code::function);
}

TEST(EvdevKeyCodes, KeypadEnterIsNotReturn) {
    EXPECT_EQ(keyCodeOf(x(KEY_KPENTER)), 76);
}

TEST(EvdevKeyCodes, ForwardDeleteIsNotBackspace) {
    EXPECT_EQ(keyCodeOf(x(KEY_DELETE)), 117);
}

TEST(EvdevKeyCodes, TheKeyBesideLeftShiftOnIsoKeyboardsHasACodeOfItsOwn) {
    EXPECT_EQ(keyCodeOf(x(KEY_102ND)), 10);
}

TEST(EvdevKeyCodes, ThePrintKeyIsF13AsOnAMacButF13ItselfGoesFirst) {
    EXPECT_EQ(keyCodeOf(x(KEY_SYSRQ)), 105);
    EXPECT_EQ(xKeycodeOf(105), x(KEY_F13));
}

TEST(EvdevKeyCodes, AKeyThatMacOSDoesNotHaveHasNoCode) {
    EXPECT_EQ(keyCodeOf(x(KEY_PLAYPAUSE)), std::nullopt);
    EXPECT_EQ(xKeycodeOf(1000), std::nullopt);
}

TEST(EvdevKeyCodes, NoKeyIsBelowTheFirstOfX) {
    for (int key = 0; key < 8; ++key)
        EXPECT_EQ(keyCodeOf(static_cast<XKeycode>(key)), std::nullopt);
}

TEST(EvdevKeyCodes, LettersAreThoseOfTheAnsiKeyboard) {
    std::set<char> letters;
    for (const auto& [token, evdev, keyCode] : hotkeyKeys) {
        const bool isLetter = token[1] == 0 && token[0] >= 'a' && token[0] <= 'z';
        EXPECT_EQ(ansiLetterOf(keyCode), isLetter ? token[0] : 0) << token;
        if (isLetter) letters.insert(ansiLetterOf(keyCode));
    }
    EXPECT_EQ(letters.size(), 26u);
}
