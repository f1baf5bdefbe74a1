#!/usr/bin/env bash
# In a terminal the paste shortcut has Shift in it. The hotkey here is of modifiers alone, for a
# terminal would take a key for input.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

write_configuration ctrl+alt
start_server
start_quietlark
input="$desktop/typed.txt"
open_terminal "$input"

say_holding_hotkey 'turn off the light' "$control $alt"
wait_until 120 test -s "$input" || fail "Nothing arrived in the terminal."
wait_until 5 grep -q light "$input" || true
expect 'the text' 'turn off the light' "$(cat "$input")"
