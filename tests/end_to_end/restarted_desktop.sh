#!/usr/bin/env bash
# The sound server, Avahi and the tray may all go and come again: the program works on, and meanwhile
# says what is missing.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

# Where something is missing from the start, nothing can be lost.
[ -n "$network_id" ] || {
    echo 'skipped: a network of its own needs namespaces, and these need root'
    exit 77
}

permissions_alert_is_open() {
    xdotool search --onlyvisible --name 'Quietlark needs permissions'
}

# dictate_again TEXT_SO_FAR SENTENCE: with the editor to the fore, whatever else is open.
dictate_again() {
    window=$editor
    wait_until 30 window_has_keyboard || fail 'The editor did not get the keyboard.'
    say_holding_hotkey "$2"
    expect "the text after $restarted" "$1$2" "$(text_of_editor "$document")"
}

icon_is_in_tray() {
    xwininfo -tree -root | grep -q '"quietlark"'
}

start_server
choose_started_server
write_configuration
start_quietlark
document="$desktop/letter.txt"
open_mousepad "$document"
editor=$window
restarted=nothing
wait_until 30 icon_is_in_tray || fail 'There is no icon in the tray.'
dictate_again '' 'hello world'

restarted='the sound server'
end "$sound_server_id"
wait_until 30 permissions_alert_is_open || fail 'Nobody was told that there is no microphone.'
start_microphone
wait_until 30 "$bin/quietlark" doctor || fail 'The microphone is not seen again.'
dictate_again 'hello world' 'open the door'

restarted='the tray'
end "$window_manager_id"
start_window_manager
wait_until 30 icon_is_in_tray || fail 'The icon is not in the tray again.'
dictate_again 'hello worldopen the door' 'turn off the light'

restarted='Avahi'
end "$network_id"
start_network
wait_until 30 "$bin/quietlark" doctor || fail 'The network is not seen again.'
dictate_again 'hello worldopen the doorturn off the light' 'hello how are you'
is_running "$quietlark_id" || fail 'Quietlark is no longer running.'
