#!/usr/bin/env bash
# A terminal as it comes, which knows no shortcut for the clipboard, gets the text all the same. The
# hotkey here is of modifiers alone, for a terminal would take a key for input.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

write_configuration ctrl+alt
start_server
start_quietlark
input="$desktop/typed.txt"
open_terminal "$input"

selection_is_there() {
    [ "$(timeout 5 xclip -selection primary -out)" = selected ]
}
printf selected | xclip -selection primary -in
wait_until 30 selection_is_there || fail 'Nothing could be selected.'

say_holding_hotkey 'turn off the light' "$control $alt"
wait_until 120 test -s "$input" || fail "Nothing arrived in the terminal."
wait_until 5 grep -q light "$input" || true
expect 'the text' 'turn off the light' "$(cat "$input")"
wait_until 30 selection_is_there || fail 'What was selected before is gone.'
