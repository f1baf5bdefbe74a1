#!/usr/bin/env bash
# usage: shared_servers.sh SERVER_PROGRAM WHISPER_STAND_IN APPLICATION
#
# Three servers of different speeds share on one of two computers, and the application on the other
# lists them, recommends the fastest and has it transcribe a recording. Skips (77) where there can be
# no such network.
set -euo pipefail
# shellcheck source=../peers/two_computers.sh
. "$(dirname "$0")/../peers/two_computers.sh"
enter_near "$0" "$@"

# shellcheck source=scripts/lib/processes.sh
. "$(dirname "$0")/../../scripts/lib/processes.sh"

server_program=$1
stand_in=$2
application=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
    echo "$1"
    cat "$folder"/*.log
    exit 1
}

# until_true COMMAND...: waits for half a minute at the most.
until_true() {
    wait_until 30 "$@" || fail "never succeeded: $*"
}

connect_computers "$folder"

# share NAME SPEED: a server whose engine takes a recording's length divided by SPEED.
share() {
    printf 'speed %s\n' "$2" >"$folder/$1.model"
    on_far "$server_program" --share --port 0 --name "$1" --engine whisper \
        --whisper-server "$stand_in" --model "$folder/$1.model" \
        --endpoint-file "$folder/$1.endpoint" >"$folder/$1.output" 2>"$folder/$1.log" &
}

servers() {
    HOME=$folder DBUS_SYSTEM_BUS_ADDRESS=unix:path="$folder/near.bus" \
        "$application" servers --seconds 3 >"$folder/list" 2>"$folder/application.log"
    cat "$folder/list"
}

lists_all() {
    servers | tee "$folder/list.txt"
    [ "$(grep -c $'^\\(Attic\\|Cellar\\|Kitchen\\)\t' "$folder/list.txt")" = 3 ]
}

share Attic 2
share Cellar 200
share Kitchen 20
for name in Attic Cellar Kitchen; do
    until_true grep -q '^listening on ' "$folder/$name.output"
done
# There is a recommendation only for a computer whose speed is known.
printf 'model name\t: Apple M1\n' >"$folder/cpuinfo"
mount --bind "$folder/cpuinfo" /proc/cpuinfo
until_true lists_all
cat "$folder/list.txt"

# Column 3 is the speed; the slowest and the fastest must be told apart.
speed() { sed -n "s/^$1\t[^\t]*\t\([0-9]*\)\.[0-9]x\t.*/\1/p" "$folder/list.txt"; }
[ "$(speed Attic)" -lt "$(speed Kitchen)" ] || fail "Attic is not slower than Kitchen"
[ "$(speed Kitchen)" -lt "$(speed Cellar)" ] || fail "Kitchen is not slower than Cellar"
address=$(sed -n 's/^Cellar\t\([^\t]*\)\t.*/\1/p' "$folder/list.txt")
grep -q "^Recommended: Cellar.*$address" "$folder/list.txt" ||
    fail "the fastest is not recommended"

flite -t "hello" -o "$folder/hello.wav"
HOME=$folder "$application" transcribe "$folder/hello.wav" --server "http://$address" |
    grep -q '^samples=' || fail "the fastest does not transcribe"
echo "all as expected"
