#!/usr/bin/env bash
# Preferences by the keyboard alone, as a screen reader reads them: what is changed there holds at
# once. And the alert that says what is missing, while it is missing.
# shellcheck source=window_support.sh
. "$(dirname "$0")/window_support.sh"

autostart="$XDG_CONFIG_HOME/autostart/net.quietlark.app.desktop"

opens_preferences() {
    "$bin/quietlark" 2>"$logs/second.err" || fail 'The second start failed.'
    open_window '^Quietlark$'
}

alert_is_gone() {
    ! xdotool search --onlyvisible --name '^Quietlark needs permissions$' >/dev/null
}

start_screen_reader
start_server
choose_started_server
write_configuration
start_quietlark
opens_preferences

sees 'check box' 'Launch at login'
goes_to 'check box' 'Launch at login'
key space
wait_until 30 test -e "$autostart" || fail 'Nothing is started at login.'
key space
wait_until 30 test ! -e "$autostart" || fail 'It is still started at login.'

goes_to 'page tab list' General
key Right
sees label 'Hold to dictate'
goes_to 'push button' 'Hold to dictate'
key space
sees 'push button' 'Hold to dictate: (Esc'
key Delete
sees 'push button' 'Hold to dictate: Ctrl+Alt+Space'
key space
sees 'push button' 'Hold to dictate: (Esc'
key ctrl+F9
sees 'push button' 'Hold to dictate: Ctrl+F9'

goes_to 'page tab list' Hotkey
key Right
sees label 'Connected to 127.0.0.1'
goes_to 'push button' 'Change Server'
key space
sees 'push button' Cancel
key Escape
sees 'push button' 'Change Server'
key ctrl+w

open_mousepad "$desktop/letter.txt"
f9=75
say_holding_hotkey 'open the door' "$control $f9"
expect 'the text' 'open the door' "$(text_of_editor "$desktop/letter.txt")"

end "$sound_server_id"
sees label 'Quietlark needs your permission'
sees 'push button' 'Grant: Microphone'
start_microphone
wait_until 60 alert_is_gone || fail 'The alert stays although nothing is missing.'
