#pragma once

#include <optional>

#include <QByteArray>
#include <xcb/xcb.h>

namespace quietlark {

/// The WM_CLASS of a window, by which users and window managers know programs.
struct WindowClass {
    QByteArray instance;
    QByteArray className;
};

/// The window that gets the keys, often one inside a program's top-level window; absent when none
/// gets them. A few round trips.
[[nodiscard]] std::optional<xcb_window_t> windowWithFocus(xcb_connection_t* connection,
                                                          xcb_window_t root);

/// The class of the window that gets the keys, with empty names for one that has none; absent when
/// no window gets them. A few round trips.
[[nodiscard]] std::optional<WindowClass> focusedWindow(xcb_connection_t* connection,
                                                       xcb_window_t root);

/// Whether such a window is a terminal emulator, where Control with a letter is for the program
/// inside and the terminal's own shortcuts have Shift as well.
[[nodiscard]] bool isTerminal(const WindowClass& window);

/// Whether such a window is a terminal emulator of before the clipboard: as they come, the only key
/// that pastes there is Shift-Insert, and what it pastes is the PRIMARY selection, like the middle
/// button of the mouse. Tried with xterm 379, rxvt-unicode 9.30 and mlterm 3.9; aterm and Eterm are
/// taken to be like rxvt, which they come from.
[[nodiscard]] bool pastesPrimary(const WindowClass& window);

}  // namespace quietlark
