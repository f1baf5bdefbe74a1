# shellcheck shell=bash
# Two computers on a virtual network, each a network namespace with an Avahi daemon and a system bus
# of its own. The script itself is on "near"; on_far runs programs on the other.

# enter_near "$0" ARGUMENT...: starts the script again on the near computer, on which it is alone;
# there it does nothing. Skips (77) where there can be no such network.
enter_near() {
    [ "${QUIETLARK_IN_NAMESPACE:-}" != yes ] || return 0
    if ! unshare --net --mount true 2>/dev/null; then
        echo "skipped: a network of one's own takes root"
        exit 77
    fi
    export QUIETLARK_IN_NAMESPACE=yes
    exec unshare --net --mount --propagation private --pid --fork --kill-child --mount-proc bash "$@"
}

# connect_computers FOLDER: brings up both, with their logs in the folder. The near one's system bus is
# $FOLDER/near.bus, its Avahi daemon is found where programs look for it, and it is 10.77.0.1.
connect_computers() {
    computers=$1
    mount -t tmpfs -o mode=755 tmpfs /run
    mkdir /run/netns
    ip netns add far
    ip link add near type veth peer name eth netns far
    ip address add 10.77.0.1/24 dev near
    ip link set lo up
    ip link set near up
    ip -n far address add 10.77.0.2/24 dev eth
    ip -n far link set lo up
    ip -n far link set eth up
    start_services near near bash
    start_services far eth ip netns exec far bash
}

# start_services NAME INTERFACE SHELL...: a bus and an Avahi daemon on the computer of that name.
start_services() {
    local name=$1 interface=$2
    shift 2
    cat >"$computers/$name.conf" <<XML
<busconfig><listen>unix:path=$computers/$name.bus</listen><auth>EXTERNAL</auth>
<policy context="default"><allow own="*"/><allow send_destination="*"/><allow receive_sender="*"/>
</policy></busconfig>
XML
    printf '%s\n' '[server]' "host-name=quiet-$name" use-ipv6=no "allow-interfaces=$interface" \
        '[publish]' publish-hinfo=no publish-workstation=no >"$computers/$name.avahi"
    dbus-daemon --config-file="$computers/$name.conf" --nofork --nopidfile \
        2>"$computers/bus-$name.log" &
    until [ -S "$computers/$name.bus" ]; do sleep 0.01; done
    # The daemon's files are where they always are, so that the far one needs a /run of its own; it
    # has mounts of its own.
    # shellcheck disable=SC2016
    DBUS_SYSTEM_BUS_ADDRESS="unix:path=$computers/$name.bus" "$@" -c '
        [ "$2" = near ] || mount -t tmpfs -o mode=755 tmpfs /run
        mkdir /run/avahi-daemon &&
            exec avahi-daemon -f "$1" --no-drop-root --no-chroot --no-rlimits' \
        avahi "$computers/$name.avahi" "$name" 2>"$computers/avahi-$name.log" &
}

# on_far COMMAND...
on_far() {
    DBUS_SYSTEM_BUS_ADDRESS="unix:path=$computers/far.bus" ip netns exec far "$@"
}
