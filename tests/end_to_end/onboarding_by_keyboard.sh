#!/usr/bin/env bash
# The first run by the keyboard alone: a server by its address, a second hotkey, a dictation into the
# wizard's own box and one elsewhere. Half-way the wizard is closed, and comes up where it was.
# shellcheck source=window_support.sh
. "$(dirname "$0")/window_support.sh"

start_screen_reader
start_server
address=$(sed -n 's|^listening on http://||p' "$logs/server.out")
open_wizard

sees label 'Welcome to Quietlark'
sees label 'Step 1 of 5'
waits_for_keyboard 'push button' Next
key Return

is_at 1
waits_for_keyboard 'radio button' 'On this computer'
key Down
waits_for_keyboard 'radio button' 'On the network'
key Return
sees label 'Servers on your local network'
goes_to 'push button' 'Enter another address'
key space
waits_for_keyboard text 'Enter a server address'
xdotool type "$address"
sees label Connected
key Return

is_at 2
sees image Granted
waits_for_keyboard 'push button' Next
key Return

is_at 3
goes_to 'push button' 'Press to toggle'
key space
sees 'push button' 'Press to toggle: (Esc'
key ctrl+alt+d
wait_until 30 setting_is toggleHotkey '"ctrl\+alt\+d"' || fail "The hotkey is not stored: $(cat "$configuration")"
sees 'push button' 'Press to toggle: Ctrl+Alt+D'

leave_and_come_back key alt+F4
sees label 'Pick your hotkeys'
waits_for_keyboard 'push button' Next
key Return

is_at 4
sees label "You're all set!"
goes_to text 'Try it out'
tries_out 'hello world'
goes_to 'push button' Finish
key Return
dictates_elsewhere 'open the door'
