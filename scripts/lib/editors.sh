# shellcheck shell=bash
# Editors and a terminal that others wrote, to dictate into. Each is opened by open_NAME FILE, has
# the keyboard focus then, and what arrived in it is read from FILE.

window_is_there() {
    window=$(xdotool search --onlyvisible --name "$1" | tail -n 1)
    [ -n "$window" ]
}

window_has_keyboard() {
    xdotool windowactivate "$window"
    [ "$(xdotool getactivewindow)" = "$window" ] && [ "$(xdotool getwindowfocus)" -gt 1 ]
}

# open_window PATTERN: waits for the window whose title matches, and gives it the keyboard.
open_window() {
    wait_until 60 window_is_there "$1" || fail "The window \"$1\" did not open."
    wait_until 30 window_has_keyboard || fail "The window \"$1\" did not get the keyboard."
}

open_mousepad() {
    : >"$1"
    start mousepad mousepad --disable-server "$1"
    open_window "${1##*/} - Mousepad"
}

open_featherpad() {
    : >"$1"
    start featherpad featherpad --standalone "$1"
    open_window "${1##*/}"
}

# The terminal writes what is typed or pasted to FILE, byte by byte.
open_terminal() {
    : >"$1"
    start terminal xterm -title terminal -e sh -c 'stty -icanon; exec cat >"$0"' "$1"
    open_window '^terminal$'
}

# Both editors mark a changed document with an asterisk in the title.
has_unsaved_text() {
    xdotool getwindowname "$window" | grep -q '^\*'
}

is_saved() {
    ! has_unsaved_text
}

# save_text_of_editor SECONDS: waits for text to arrive and saves it; false when none came.
save_text_of_editor() {
    wait_until "$1" has_unsaved_text || return 1
    xdotool key ctrl+s
    wait_until 30 is_saved
}
