# shellcheck shell=bash
# Programs in the background. Each runs in a session of its own, so that its children end with it,
# and is ended by its id when the script ends, however that comes about.

started=()

# start NAME COMMAND...: leaves the process id in `started_id`, its output in $logs/NAME.{out,err}.
start() {
    local name=$1
    shift
    # Now, and not some time after the process was made: nobody is to read what the last one said.
    : >"$logs/$name.out"
    setsid setpriv --pdeathsig TERM "$@" >"$logs/$name.out" 2>"$logs/$name.err" </dev/null &
    started_id=$!
    disown "$started_id"
    started+=("$started_id")
}

is_running() {
    kill -0 "$1" 2>/dev/null
}

has_ended() {
    ! is_running "$1"
}

# The system gives the number of a process that has ended to another one, which is then a child of
# somebody else. It does not as long as anything of the old one's session is left.
is_somebody_elses() {
    [ -e "/proc/$1" ] && ! grep -qxE "PPid:[[:space:]]+$$" "/proc/$1/status" 2>/dev/null
}

# end ID: asks, waits, then leaves nothing of its session behind.
end() {
    ! is_somebody_elses "$1" || return 0
    kill -TERM -- "-$1" 2>/dev/null || kill -TERM "$1" 2>/dev/null || return 0
    wait_until 5 has_ended "$1" || true
    kill -KILL -- "-$1" 2>/dev/null || true
}

# The last one started goes first: programs before the desktop they stand on.
end_all() {
    local index
    for ((index = ${#started[@]} - 1; index >= 0; index--)); do
        end "${started[index]}"
    done
    started=()
}

# wait_until SECONDS COMMAND...: until the command succeeds; false when the time is over.
wait_until() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

line_or_end() {
    grep -q "$3" "$2" || has_ended "$1"
}

# wait_for_line SECONDS ID FILE PATTERN: false as soon as the process that writes the file is gone.
wait_for_line() {
    wait_until "$1" line_or_end "$2" "$3" "$4" && grep -q "$4" "$3"
}
