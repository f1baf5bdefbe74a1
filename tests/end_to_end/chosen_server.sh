#!/usr/bin/env bash
# A server that another computer shares is found and chosen with the keyboard alone, and transcribes
# the next dictation. QUIETLARK_PICTURES names a folder for screenshots on the way.
# shellcheck source=../peers/two_computers.sh
. "$(dirname "$0")/../peers/two_computers.sh"
enter_near "$0" "$@"
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

# On the desktop's own network there is nobody else.
join_computers() {
    end "$network_id"
    connect_computers "$logs"
    export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$logs/near.bus"
    wait_until 30 avahi_answers || fail 'Avahi did not start.'
}

share_on_far() {
    server_since=$EPOCHSECONDS
    on_far "$bin/quietlark-server" --share --port 0 --name "$1" \
        --endpoint-file "$desktop/far.endpoint" >"$logs/server.out" 2>"$logs/server.err" &
    server_id=$!
    wait_for_line 120 "$server_id" "$logs/server.out" '^listening on ' ||
        fail 'The speech server did not start.'
}

is_listed() {
    "$bin/quietlark" servers --seconds 2 | tee "$logs/list" | grep $'^Study\t'
}

picture_of_window() {
    scrot --overwrite --focused "$desktop/window.png" && sha256sum <"$desktop/window.png"
}

# follows: whether it shows something new and has come to rest, as a list does in which servers appear.
shown=
stillness=0
last_shown=
follows() {
    local before=$shown
    shown=$(picture_of_window)
    stillness=$((stillness + 1))
    [ "$shown" = "$before" ] || stillness=0
    [ "$shown" != "$last_shown" ] && [ "$stillness" -ge 3 ] || return 1
    last_shown=$shown
}

# step NAME KEY: presses the key and waits until the window has followed.
step() {
    xdotool key "$2"
    wait_until 30 follows || fail "Nothing followed the key $2 ($1)."
    keep_picture "$1"
}

keep_picture() {
    [ -z "${QUIETLARK_PICTURES:-}" ] || take_screenshot "$QUIETLARK_PICTURES/chosen-server-$1.png"
}

choice_is_stored() {
    grep -q '"instance": "Study"' "$XDG_CONFIG_HOME/Quietlark/config.json"
}

join_computers
share_on_far Study
wait_until 60 is_listed || fail 'The server is not found.'
# There is a comparison only with a computer whose speed is known.
printf 'model name\t: Apple M1\n' >"$desktop/cpuinfo"
mount --bind "$desktop/cpuinfo" /proc/cpuinfo

server_mode='{ "unconfigured": {} }'
write_configuration
start_quietlark
open_window '^Quietlark$'
wait_until 30 follows || fail 'The window is not drawn.'
keep_picture cards
step network Down
step list Return
step chosen Down
step connected Return
wait_until 30 choice_is_stored || fail 'The choice is not stored.'

document="$desktop/letter.txt"
open_mousepad "$document"
say_holding_hotkey 'hello world'
expect 'the text' 'hello world' "$(text_of_editor "$document")"
keep_picture dictated
expect 'the uploads to the other computer' 1 "$(requests_of_server | grep -c '^POST ')"
