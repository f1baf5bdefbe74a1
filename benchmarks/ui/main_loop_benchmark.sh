#!/usr/bin/env bash
# main_loop_benchmark.sh BIN
#
# How long Quietlark's main thread is busy at once, with all that it is on a desktop: X11, D-Bus, a
# screen reader, sound and a network. For each thing that a user does, the longest time between two
# waits of the event loop, and the most processor time in one.
# shellcheck source=../../tests/end_to_end/window_support.sh
. "$(dirname "$0")/../../tests/end_to_end/window_support.sh"

export QUIETLARK_TURNS="$desktop/turns"

starts_measured() {
    LD_PRELOAD="$bin/libmain_loop_turns.so" start_quietlark
}

# report WHAT: the longest turn since the last report.
report() {
    awk -v what="$1" '
        $1 > wall { wall = $1 }
        $2 > processor { processor = $2 }
        END { printf "%-36s %8.1f %8.1f\n", what, wall, processor }' "$QUIETLARK_TURNS"
    : >"$QUIETLARK_TURNS"
}

start_screen_reader
start_server
address=$(sed -n 's|^listening on http://||p' "$logs/server.out")
printf '%-36s %8s %8s\n' milliseconds longest processor
for launch in 1 2 3 4 5 6; do
    [ "$launch" = 1 ] || end "$quietlark_id"
    starts_measured
    open_window '^Welcome to Quietlark$'
    sees label 'Welcome to Quietlark'
    report "launch into the wizard, $launch"
done

key Return
is_at 1
waits_for_keyboard 'radio button' 'On this computer'
report 'go to the server step'
key Down Return
sees label 'Servers on your local network'
goes_to 'push button' 'Enter another address'
key space
waits_for_keyboard text 'Enter a server address'
xdotool type "$address"
sees label Connected
report 'enter an address'
key Return
is_at 2
waits_for_keyboard 'push button' Next
report 'go to the permissions'
key Return
is_at 3
waits_for_keyboard 'push button' Next
report 'go to the hotkeys'
key Return
is_at 4
sees label "You're all set!"
report 'go to the done step'
key Return
wait_until 30 wizard_is_finished || fail 'The wizard has not ended.'
report 'finish'

"$bin/quietlark" 2>/dev/null
open_window '^Quietlark$'
sees 'check box' 'Launch at login'
report 'open Preferences'
goes_to 'page tab list' General
key Right
sees label 'Hold to dictate'
key Right
sees label 'Connected to'
report 'go through the panes'
goes_to 'push button' 'Change Server'
key space
sees 'push button' Cancel
report 'change the server'
key Escape
key ctrl+w
open_mousepad "$desktop/letter.txt"
say_holding_hotkey 'open the door'
save_text_of_editor 120 || fail 'Nothing arrived.'
report 'dictate'
