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

permissions_alert_is_closed() {
    ! permissions_alert_is_open
}

# dictate_again SENTENCE: with the editor to the fore, whatever else is open.
text=
dictate_again() {
    window=$editor
    wait_until 30 window_has_keyboard || fail 'The editor did not get the keyboard.'
    say_holding_hotkey "$1"
    text+=$1
    expect "the text after $restarted" "$text" "$(text_of_editor "$document")"
}

icon_is_in_tray() {
    xwininfo -tree -root | grep -q '"quietlark"'
}

stop_sound() { end "$sound_server_id"; }
stop_tray() { end "$window_manager_id"; }
stop_network() { end "$network_id"; }
start_sound() { start_microphone; }
start_tray() {
    start_window_manager
    wait_until 30 icon_is_in_tray || fail 'The icon is not in the tray again.'
}

# restart PART...: all go at once, and come again in this order. The program itself tells when it
# sees them again: by closing the window in which it had said what is missing.
restart() {
    local part
    restarted=$*
    for part in "$@"; do "stop_$part"; done
    [ "$*" = tray ] || wait_until 30 permissions_alert_is_open || fail "Nobody was told about: $*"
    for part in "$@"; do "start_$part"; done
    wait_until 30 permissions_alert_is_closed || fail "The program does not see again: $*"
}

start_server
choose_started_server
write_configuration
start_quietlark
document="$desktop/letter.txt"
open_mousepad "$document"
editor=$window
wait_until 30 icon_is_in_tray || fail 'There is no icon in the tray.'
restarted=nothing
dictate_again 'hello world'

restart sound
dictate_again 'open the door'
restart tray
dictate_again 'turn off the light'
restart network
dictate_again 'hello how are you'
restart network tray sound
dictate_again 'open the door'
restart tray sound network
dictate_again 'hello world'
is_running "$quietlark_id" || fail 'Quietlark is no longer running.'
