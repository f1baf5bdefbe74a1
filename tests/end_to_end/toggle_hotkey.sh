#!/usr/bin/env bash
# The toggle hotkey: one press starts, the next one stops, and nothing is held in between.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

letter_d=40
toggle() {
    press_keys "$control" "$alt" "$letter_d"
    release_keys "$control" "$alt" "$letter_d"
}

write_configuration ctrl+alt+space ctrl+alt+d
start_server
start_quietlark
document="$desktop/letter.txt"
open_mousepad "$document"

toggle
wait_until_recording
speech 'open the door'
say_into_microphone "$speech"
toggle
expect 'the text' 'open the door' "$(text_of_editor "$document")"
