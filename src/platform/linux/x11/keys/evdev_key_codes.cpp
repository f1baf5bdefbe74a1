#include "platform/linux/x11/keys/evdev_key_codes.h"

#include <algorithm>
#include <array>

#include <linux/input-event-codes.h>

namespace quietlark {

namespace {

constexpr int xKeycodeOffset = 8;

struct Key {
    int evdev;
    KeyCode keyCode;
    char letter = 0;
};

// macOS codes as in HIToolbox's Events.h. The keys above the navigation block, Insert, Num Lock and
// the Japanese and Korean language keys have the codes that macOS gives to those keys of a PC
// keyboard. Keys that share a code stand in order of preference.
constexpr auto keys = std::to_array<Key>({
    {KEY_A, 0, 'a'},
    {KEY_S, 1, 's'},
    {KEY_D, 2, 'd'},
    {KEY_F, 3, 'f'},
    {KEY_H, 4, 'h'},
    {KEY_G, 5, 'g'},
    {KEY_Z, 6, 'z'},
    {KEY_X, 7, 'x'},
    {KEY_C, 8, 'c'},
    {KEY_V, key_code::v, 'v'},
    {KEY_102ND, 10},
    {KEY_B, 11, 'b'},
    {KEY_Q, 12, 'q'},
    {KEY_W, 13, 'w'},
    {KEY_E, 14, 'e'},
    {KEY_R, 15, 'r'},
    {KEY_Y, 16, 'y'},
    {KEY_T, 17, 't'},
    {KEY_1, 18},
    {KEY_2, 19},
    {KEY_3, 20},
    {KEY_4, 21},
    {KEY_6, 22},
    {KEY_5, 23},
    {KEY_EQUAL, 24},
    {KEY_9, 25},
    {KEY_7, 26},
    {KEY_MINUS, 27},
    {KEY_8, 28},
    {KEY_0, 29},
    {KEY_RIGHTBRACE, 30},
    {KEY_O, 31, 'o'},
    {KEY_U, 32, 'u'},
    {KEY_LEFTBRACE, 33},
    {KEY_I, 34, 'i'},
    {KEY_P, 35, 'p'},
    {KEY_ENTER, 36},
    {KEY_L, 37, 'l'},
    {KEY_J, 38, 'j'},
    {KEY_APOSTROPHE, 39},
    {KEY_K, 40, 'k'},
    {KEY_SEMICOLON, 41},
    {KEY_BACKSLASH, 42},
    {KEY_COMMA, 43},
    {KEY_SLASH, 44},
    {KEY_N, 45, 'n'},
    {KEY_M, 46, 'm'},
    {KEY_DOT, 47},
    {KEY_TAB, 48},
    {KEY_SPACE, 49},
    {KEY_GRAVE, 50},
    {KEY_BACKSPACE, 51},
    {KEY_ESC, 53},

    {KEY_RIGHTMETA, key_code::rightCommand},
    {KEY_LEFTMETA, key_code::command},
    {KEY_LEFTSHIFT, key_code::shift},
    {KEY_CAPSLOCK, key_code::capsLock},
    {KEY_LEFTALT, key_code::option},
    {KEY_LEFTCTRL, key_code::control},
    {KEY_RIGHTSHIFT, key_code::rightShift},
    {KEY_RIGHTALT, key_code::rightOption},
    {KEY_RIGHTCTRL, key_code::rightControl},
    // KEY_FN itself is beyond X's keycodes; laptops that report their Fn key to X do it as this.
    {KEY_WAKEUP, key_code::function},

    {KEY_KPDOT, 65},
    {KEY_KPASTERISK, 67},
    {KEY_KPPLUS, 69},
    {KEY_NUMLOCK, 71},
    {KEY_KPSLASH, 75},
    {KEY_KPENTER, 76},
    {KEY_KPMINUS, 78},
    {KEY_KPEQUAL, 81},
    {KEY_KP0, 82},
    {KEY_KP1, 83},
    {KEY_KP2, 84},
    {KEY_KP3, 85},
    {KEY_KP4, 86},
    {KEY_KP5, 87},
    {KEY_KP6, 88},
    {KEY_KP7, 89},
    {KEY_KP8, 91},
    {KEY_KP9, 92},
    {KEY_KPCOMMA, 95},
    {KEY_KPJPCOMMA, 95},

    {KEY_F1, 122},
    {KEY_F2, 120},
    {KEY_F3, 99},
    {KEY_F4, 118},
    {KEY_F5, 96},
    {KEY_F6, 97},
    {KEY_F7, 98},
    {KEY_F8, 100},
    {KEY_F9, 101},
    {KEY_F10, 109},
    {KEY_F11, 103},
    {KEY_F12, 111},
    {KEY_F13, 105},
    {KEY_SYSRQ, 105},
    {KEY_F14, 107},
    {KEY_SCROLLLOCK, 107},
    {KEY_F15, 113},
    {KEY_PAUSE, 113},
    {KEY_F16, 106},
    {KEY_F17, 64},
    {KEY_F18, 79},
    {KEY_F19, 80},
    {KEY_F20, 90},

    {KEY_INSERT, 114},
    {KEY_HOME, 115},
    {KEY_PAGEUP, 116},
    {KEY_DELETE, 117},
    {KEY_END, 119},
    {KEY_PAGEDOWN, 121},
    {KEY_LEFT, 123},
    {KEY_RIGHT, 124},
    {KEY_DOWN, 125},
    {KEY_UP, 126},
    {KEY_COMPOSE, 110},

    {KEY_VOLUMEUP, 72},
    {KEY_VOLUMEDOWN, 73},
    {KEY_MUTE, 74},
    {KEY_YEN, 93},
    {KEY_RO, 94},
    {KEY_HANJA, 102},
    {KEY_HANGEUL, 104},
});

}  // namespace

std::optional<KeyCode> keyCodeOf(XKeycode xKeycode) {
    const auto key = std::ranges::find(keys, xKeycode - xKeycodeOffset, &Key::evdev);
    if (key == keys.end()) return std::nullopt;
    return key->keyCode;
}

std::optional<XKeycode> xKeycodeOf(KeyCode keyCode) {
    const auto key = std::ranges::find(keys, keyCode, &Key::keyCode);
    if (key == keys.end()) return std::nullopt;
    return static_cast<XKeycode>(key->evdev + xKeycodeOffset);
}

char ansiLetterOf(KeyCode keyCode) {
    const auto key = std::ranges::find(keys, keyCode, &Key::keyCode);
    return key == keys.end() ? char(0) : key->letter;
}

}  // namespace quietlark
