#!/usr/bin/env bash
# Every state has its symbol in the tray. With QUIETLARK_PICTURES in the environment a picture of each
# is left in that folder, and one of the menu.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"
# shellcheck source=../installation/service_manager.sh
. "$root/tests/installation/service_manager.sh"

[ -n "$network_id" ] || {
    echo 'skipped: a network of its own needs namespaces, and these need root'
    exit 77
}

owner="$desktop/owner"
service=net.quietlark.server.service
units="$owner/home/.local/share/systemd/user"
mkdir -p "$units"
before_failing() {
    show_logs
    take_screenshot "$pictures/failure.png"
    beside_manager "systemctl --user --no-pager status $service" || true
    tail -n 20 "$owner.err" >&2
}
trap 'end_service_manager; close_virtual_desktop' EXIT
start_service_manager "$owner" 0
pictures=${QUIETLARK_PICTURES:-$desktop/pictures}
mkdir -p "$pictures"

# Left, top, width and height of the icon on the screen.
icon_place() {
    # Of two digits each way; windows are larger.
    xwininfo -tree -root | sed -nE 's/^.*"quietlark".* ([0-9]{2})x([0-9]{2})\+[^ ]+ +\+([0-9]+)\+([0-9]+)$/\3,\4,\1,\2/p' |
        tail -n 1
}

icon_is_in_tray() {
    [ -n "$(icon_place)" ]
}

# The icon alone, as numbers that only the same picture has.
icon_sum() {
    local place
    place=$(icon_place)
    [ -n "$place" ] && scrot --overwrite --autoselect "$place" "$desktop/icon.png" &&
        python3 "$root/tests/end_to_end/pixel_sum.py" "$desktop/icon.png"
}

declare -A seen=()
is_new_symbol() {
    sum=$(icon_sum) && [ -n "$sum" ] && [ -z "${seen[$sum]:-}" ]
}

# expect_new_symbol STATE: the tray comes to show a symbol that no other state had.
expect_new_symbol() {
    wait_until 30 is_new_symbol || fail "There is no symbol of its own in the tray: $1."
    seen[$sum]=$1
    cp "$desktop/icon.png" "$pictures/tray-$1.png"
}

# expect_symbol_of STATE
expect_symbol_of() {
    wait_until 30 symbol_is_of "$1" || fail "The tray does not show the symbol again: $1."
}

symbol_is_of() {
    sum=$(icon_sum) && [ "${seen[$sum]:-}" = "$1" ]
}

order() {
    [ "$("$bin/quietlark" dictation "$1")" = "$2" ] || fail "The order was not obeyed: $1."
}

take_picture_of_menu() {
    local place
    place=$(icon_place)
    IFS=, read -r left top width height <<<"$place"
    xdotool mousemove $((left + width / 2)) $((top + height / 2)) click 3
    sleep 1 # for the picture alone: the menu may still be fading in
    take_screenshot "$pictures/tray-menu.png"
    xdotool key Escape
    xdotool mousemove 0 0
}

# A transcription that lasts as long as the server is held up.
start_server
choose_started_server
write_configuration
start_quietlark
wait_until 30 icon_is_in_tray || fail 'There is no icon in the tray.'
expect_new_symbol idle
take_picture_of_menu
order start recording
expect_new_symbol recording
speech 'open the door'
say_into_microphone "$speech"
kill -STOP "$server_id"
order stop transcribing
for frame in 1 2 3; do expect_new_symbol "transcribing-$frame"; done
kill -CONT "$server_id"
expect_symbol_of idle
end "$sound_server_id"
expect_new_symbol warning
start_microphone
expect_symbol_of idle

# The local server, which here only ever starts.
end "$server_id"
end "$quietlark_id"
printf '[Service]\nExecStart=sleep infinity\n[Install]\nWantedBy=default.target\n' >"$units/$service"
beside_manager 'systemctl --user daemon-reload' || fail 'The service was not understood.'
DBUS_SESSION_BUS_ADDRESS="unix:path=$owner/run/bus"
server_mode='{ "local": {} }'
write_configuration
start_quietlark
expect_new_symbol model-missing
mkdir -p "$XDG_DATA_HOME/Quietlark/models"
: >"$XDG_DATA_HOME/Quietlark/models/active.bin"
expect_new_symbol server-stopped
beside_manager "systemctl --user enable --now $service" || fail 'The service did not start.'
for frame in 1 2; do expect_new_symbol "server-starting-$frame"; done
beside_manager "systemctl --user disable --now $service" || fail 'The service did not end.'
expect_symbol_of server-stopped
beside_manager "systemctl --user enable --now $service" || fail 'The service did not start again.'
expect_symbol_of server-starting-1
beside_manager "systemctl --user mask --force --now $service" || fail 'The service was not forbidden.'
expect_symbol_of server-stopped
wait_until 30 xdotool search --onlyvisible --name '^Quietlark( Preferences)?$' ||
    fail 'Nobody was asked to allow the server.'
