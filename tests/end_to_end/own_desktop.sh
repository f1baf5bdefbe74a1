#!/usr/bin/env bash
# A run on one's own desktop leaves alone the Quietlark that is installed there, and starts whatever
# was chosen in its settings and whoever has its port meanwhile.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"
# shellcheck source=../installation/service_manager.sh
. "$root/tests/installation/service_manager.sh"

preset=$(basename "$(dirname "$bin")")
service=net.quietlark.server.service
manager="$desktop/manager"
trial="$desktop/trial"
configuration="$trial/config/Quietlark/config.json"

# The service manager of the desktop's user, which runs the speech server that is installed there.
install_service() {
    local units="$manager/home/.local/share/systemd/user"
    mkdir -p "$units"
    printf '[Service]\nExecStart=sleep infinity\n[Install]\nWantedBy=default.target\n' \
        >"$units/$service"
    trap 'end_service_manager; close_virtual_desktop' EXIT
    start_service_manager "$manager" 0
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$manager/run/bus"
    beside_manager "systemctl --user enable --now $service" || fail 'The service does not start.'
}

service_runs() {
    beside_manager "systemctl --user is-enabled $service && systemctl --user is-active $service" ||
        fail "$1 the service of the installed Quietlark is switched off."
}

# A model of the user's own, and what else is in the home folder.
listing() {
    find "$HOME" -path "$HOME/.cache" -prune -o -type f -printf '%P %s %T@\n' | sort
}

start_trial() {
    start trial env --default-signal=INT QUIETLARK_TRIAL="$trial" \
        "$BASH" "$root/scripts/run" --preset "$preset"
    trial_id=$started_id
}

trial_is_ready() {
    wait_for_line 300 "$trial_id" "$logs/trial.out" '^ready' ||
        fail "$1 the run does not start: $(cat "$logs/trial.err")"
    # It answers, so what it does at its start is done.
    "$bin/quietlark" dictation status >/dev/null || fail "$1 Quietlark does not answer."
}

# As Ctrl-C does.
interrupt_trial() {
    kill -INT -- "-$trial_id"
    wait_until 30 has_ended "$trial_id" || fail 'The run does not end.'
}

# The server that the configuration names.
configured() {
    tr -d ' \n' <"$configuration" | sed -E 's/.*"serverMode":\{"manualRemote":(\{[^}]*\}).*/\1/'
}

configured_server_answers() {
    "$bin/quietlark" probe "http://127.0.0.1:$(configured | grep -oE '[0-9]+' | tail -n 1)"
}

install_service
mkdir -p "$HOME/.local/share/Quietlark/models"
printf model >"$HOME/.local/share/Quietlark/models/active.bin"
listing >"$desktop/before"

start_trial
trial_is_ready 'At first'
service_runs 'After a start'
configured_server_answers || fail 'The server of the run does not answer.'
first=$(configured)

# Another run beside it would do nothing but show this one's window.
status=0
QUIETLARK_TRIAL="$trial" "$BASH" "$root/scripts/run" --preset "$preset" 2>"$logs/second.err" ||
    status=$?
expect 'the exit status of a second run' 1 "$status"
grep -q 'Quit that one first' "$logs/second.err" || fail 'The second run does not say what to do.'
"$bin/quietlark" dictation status >/dev/null || fail 'The second run has ended the first.'
interrupt_trial

start_trial
trial_is_ready 'Once more'
expect 'the server of the next run' "$first" "$(configured)"
interrupt_trial

# Somebody else has the port.
port=$(cat "$trial/port")
start neighbour "$bin/quietlark-server" --port "$port" --endpoint-file "$desktop/neighbour"
wait_for_line 120 "$started_id" "$logs/neighbour.out" '^listening on ' || fail 'Nobody has the port.'
start_trial
trial_is_ready 'With its port taken'
[ "$(configured)" != "$first" ] || fail 'The configuration names the port that another server has.'
configured_server_answers || fail 'The server on the new port does not answer.'
interrupt_trial

other='{"host":"box.example","port":443,"scheme":"https"}'
server_mode="{ \"manualRemote\": $other }"
XDG_CONFIG_HOME="$trial/config" write_configuration
start_trial
trial_is_ready 'With another server chosen'
expect 'the server that was chosen' "$other" "$(configured)"
interrupt_trial

service_runs 'In the end'
listing >"$desktop/after"
expect 'what is new at home' '' "$(diff "$desktop/before" "$desktop/after" || true)"
