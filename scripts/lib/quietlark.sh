# shellcheck shell=bash
# Quietlark's two programs, and the hands that dictate with them. $bin holds the programs, $logs
# their output.

control=37 alt=64 space=65
default_hotkey="$control $alt $space"

configuration_file() {
    printf '%s\n' "$XDG_CONFIG_HOME/Quietlark/config.json"
}

# write_configuration [HOTKEY [TOGGLE_HOTKEY]]: into $XDG_CONFIG_HOME, for the server that
# $server_mode says, else for the local one.
server_mode='{ "local": {} }'
write_configuration() {
    mkdir -p "$(dirname "$(configuration_file)")"
    cat >"$(configuration_file)" <<JSON
{
    "hotkey": "${1:-ctrl+alt+space}",
    "language": "",
    "launchAtLogin": false,
    "onboardingComplete": true,
    "onboardingStep": 0,
    "serverMode": $server_mode,
    "toggleHotkey": "${2:-}"
}
JSON
}

# start_server [OPTION...]
start_server() {
    server_starts "$@" || fail "The speech server did not start."
}

server_starts() {
    server_since=$EPOCHSECONDS
    start server "$bin/quietlark-server" "$@"
    server_id=$started_id
    wait_for_line 120 "$server_id" "$logs/server.out" '^listening on '
}

# A program that is not installed tells its user so, and does less.
export_build_as_installed() {
    QUIETLARK_APPLICATIONS=$(dirname "$(dirname "$bin")")
    export QUIETLARK_APPLICATIONS
}

# HOST:PORT
address_of_started_server() {
    sed -n 's|^listening on http://||p' "$logs/server.out"
}

# Makes the server that was started the one to be configured, as one on the network would be.
choose_started_server() {
    local address
    address=$(address_of_started_server)
    server_mode="{ \"manualRemote\": { \"host\": \"${address%:*}\", \"port\": ${address##*:},"
    server_mode+=' "scheme": "http" } }'
}

start_quietlark() {
    export_build_as_installed
    start quietlark "$bin/quietlark"
    quietlark_id=$started_id
    wait_for_line 60 "$quietlark_id" "$logs/quietlark.out" '^ready' ||
        fail "Quietlark did not start."
}

# The end of what both programs said, for whoever has to find out why nothing was pasted.
show_logs() {
    local name
    for name in server quietlark; do
        [ -e "$logs/$name.out" ] || continue
        printf -- '---- %s\n' "$name" >&2
        tail -n 20 "$logs/$name.out" "$logs/$name.err" >&2
    done
}

# Keys are key codes: names would make xdotool press other keys along with them.
press_keys() {
    local key
    for key in "$@"; do xdotool keydown "$key"; done
}

release_keys() {
    local index
    for ((index = $#; index > 0; index--)); do xdotool keyup "${!index}"; done
}

wait_until_recording() {
    wait_until 30 microphone_is_recorded_by 2 || fail "Quietlark did not start to record."
}

# dictate FILE.wav [KEYS]: holds the hotkey for as long as the file is spoken.
dictate() {
    local keys
    read -ra keys <<<"${2:-$default_hotkey}"
    press_keys "${keys[@]}"
    wait_until_recording
    say_into_microphone "$1"
    release_keys "${keys[@]}"
}

# What the server was asked since it started, a line each: method, path, status and more. Its log
# goes to the journal where there is one, else to standard error. The journal may also remember an
# earlier process of the same number.
requests_of_server() {
    {
        cat "$logs/server.err"
        journalctl --quiet --output=cat --boot --since="@$server_since" \
            --identifier=net.quietlark.server "_PID=$server_id" 2>/dev/null
    } | grep -oE '(GET|POST) /[^ ]* [0-9]{3}' || true
}
