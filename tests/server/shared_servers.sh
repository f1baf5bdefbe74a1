#!/usr/bin/env bash
# usage: shared_servers.sh SERVER_PROGRAM WHISPER_STAND_IN APPLICATION
#
# Two computers on a virtual network, each a network namespace with an Avahi daemon and a system bus of
# its own: three servers of different speeds share on one of them, and the application on the other
# lists them, recommends the fastest and has it transcribe a recording. Skips (77) where there can be
# no such network.
set -euo pipefail

if [ "${QUIETLARK_IN_NAMESPACE:-}" != yes ]; then
    if ! unshare --net --mount true 2>/dev/null; then
        echo "skipped: a network of one's own takes root"
        exit 77
    fi
    export QUIETLARK_IN_NAMESPACE=yes
    exec unshare --net --mount --propagation private --pid --fork --kill-child --mount-proc \
        bash "$0" "$@"
fi

# shellcheck source=scripts/lib/processes.sh
. "$(dirname "$0")/../../scripts/lib/processes.sh"

server_program=$1
stand_in=$2
application=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cat >"$folder/bus.conf" <<'XML'
<busconfig><listen>unix:path=BUS</listen><auth>EXTERNAL</auth><policy context="default">
<allow own="*"/><allow send_destination="*"/><allow receive_sender="*"/></policy></busconfig>
XML

fail() {
    echo "$1"
    cat "$folder"/*.log
    exit 1
}

# until_true COMMAND...: waits for half a minute at the most.
until_true() {
    wait_until 30 "$@" || fail "never succeeded: $*"
}

# This namespace is the computer "near"; "far" is a child of it.
mount -t tmpfs -o mode=755 tmpfs /run
mkdir -p /run/netns /run/avahi-daemon
ip netns add far
ip link add near type veth peer name eth netns far
ip address add 10.77.0.1/24 dev near
ip link set lo up
ip link set near up
ip -n far address add 10.77.0.2/24 dev eth
ip -n far link set lo up
ip -n far link set eth up

# computer NAME INTERFACE COMMAND...: a bus and an Avahi daemon; COMMAND runs programs there.
computer() {
    local name=$1 interface=$2
    shift 2
    sed "s|BUS|$folder/$name.bus|" "$folder/bus.conf" >"$folder/$name.conf"
    printf '%s\n' '[server]' "host-name=quiet-$name" use-ipv6=no "allow-interfaces=$interface" \
        '[publish]' publish-hinfo=no publish-workstation=no >"$folder/$name.avahi"
    dbus-daemon --config-file="$folder/$name.conf" --nofork --nopidfile 2>"$folder/bus-$name.log" &
    until_true test -S "$folder/$name.bus"
    # The daemon's files are where they always are, so that each needs a /run of its own.
    DBUS_SYSTEM_BUS_ADDRESS=unix:path="$folder/$name.bus" \
        "$@" unshare --mount --propagation private bash -c '
            mount -t tmpfs -o mode=755 tmpfs /run && mkdir /run/avahi-daemon &&
            exec avahi-daemon -f "$1" --no-drop-root --no-chroot --no-rlimits' \
        avahi "$folder/$name.avahi" 2>"$folder/avahi-$name.log" &
}

far() { ip netns exec far "$@"; }
computer near near env
computer far eth far

# share NAME SPEED: a server whose engine takes a recording's length divided by SPEED.
share() {
    printf 'speed %s\n' "$2" >"$folder/$1.model"
    DBUS_SYSTEM_BUS_ADDRESS=unix:path="$folder/far.bus" far "$server_program" --share --port 0 \
        --name "$1" --engine whisper --whisper-server "$stand_in" --model "$folder/$1.model" \
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
HOME=$folder "$application" transcribe "$folder/hello.wav" --server "http://10.77.0.2:${address##*:}" |
    grep -q '^samples=' || fail "the fastest does not transcribe"
echo "all as expected"
