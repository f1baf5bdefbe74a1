# shellcheck shell=bash
# A systemd of a user for a test that is a script, with $root and fail() of its own. It ends with the
# test, or with end_service_manager.

# start_service_manager DIRECTORY USER_ID: its home directory is DIRECTORY/home, its session bus
# DIRECTORY/run/bus. Ends the test as skipped where there can be none.
start_service_manager() {
    local answer
    coproc service_manager {
        exec bash "$root/tests/peers/systemd_user.sh" "$1" "$2" 2>"$1.err"
    }
    # The shell forgets these when the manager ends.
    to_manager=${service_manager[1]} from_manager=${service_manager[0]}
    manager_id=$service_manager_PID
    read -r answer <&"$from_manager" || fail "The service manager ended: $(cat "$1.err")"
    if [ "$answer" != ready ]; then
        echo "$answer"
        exit 77
    fi
}

# beside_manager COMMAND: a line of shell; true when it succeeds.
beside_manager() {
    local answer
    printf '%s\n' "$1" >&"$to_manager"
    read -r answer <&"$from_manager" || return 1
    [ "$answer" = 'exit 0' ]
}

end_service_manager() {
    [ -n "${to_manager:-}" ] || return 0
    exec {to_manager}>&-
    wait "$manager_id" 2>/dev/null || true
    to_manager=
}
