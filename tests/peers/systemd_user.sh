#!/usr/bin/env bash
# systemd_user.sh DIRECTORY [USER_ID]: a service manager of a user (systemd --user), of root if no
# other is named, and its session bus, for one test. Prints "ready", or why it cannot run; then runs
# each line of standard input beside the manager, as that user, and prints "exit STATUS" when that
# has ended. End of input ends everything.
#
# The manager takes every process of its cgroup for its own, so it gets one of its own, and its own
# mounts and process numbers: nothing outside is touched, and all that it started ends with it. Its
# files (home/, run/) are in DIRECTORY, where the test reaches its bus.
set -euo pipefail

directory=$1
user=${2:-0}
inside=${3:-}

# Runs a command until it succeeds, for some 20 s.
retry() {
    local attempt
    for ((attempt = 0; attempt < 1000; ++attempt)); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.02
    done
    echo "This does not succeed: $*"
    exit 1
}

as_user() {
    setpriv --reuid="$user" --regid="$user" --clear-groups "$@"
}

# The first process in the new process namespace: the kernel ends all others when it ends.
run_inside() {
    umount -R /sys/fs/cgroup
    mount -t cgroup2 cgroup2 /sys/fs/cgroup
    mount -t tmpfs -o mode=755 tmpfs /run
    mkdir -p /run/systemd/system # what tells programs that systemd is there
    # What the system's own systemd has there for the sandboxes of services.
    mkdir -p /run/systemd/unit-root /run/systemd/inaccessible/dir
    : >/run/systemd/inaccessible/reg
    chmod -R 000 /run/systemd/inaccessible
    # None of the services that this computer starts for everybody: some write to the home directory.
    [ ! -d /etc/systemd/user ] || mount -t tmpfs -o mode=755 tmpfs /etc/systemd/user
    mkdir -p "$directory/home" "$directory/run" "/run/user/$user"
    chmod 700 "$directory/run"
    mount --bind "$directory/run" "/run/user/$user"
    chown "$user:$user" "$directory" "$directory/home" "$directory/run" /sys/fs/cgroup \
        /sys/fs/cgroup/cgroup.procs /sys/fs/cgroup/cgroup.subtree_control
    export HOME=$directory/home XDG_RUNTIME_DIR=/run/user/$user
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_STATE_HOME XDG_CONFIG_DIRS XDG_DATA_DIRS
    unset QUIETLARK_ENDPOINT_FILE
    # With the path that services have, and not the one of whoever runs the test.
    as_user env PATH=/usr/local/bin:/usr/bin:/bin /lib/systemd/systemd --user --log-target=null \
        </dev/null >/dev/null 2>&1 &
    retry as_user systemctl --user is-active default.target
    # The first call starts the bus, which the manager then joins.
    retry as_user busctl --user --auto-start=no call org.freedesktop.systemd1 \
        /org/freedesktop/systemd1 org.freedesktop.DBus.Peer Ping
    echo ready
    local line status
    while read -r line; do
        status=0
        as_user bash -c "$line" </dev/null >&2 || status=$?
        echo "exit $status"
    done
}

# Outlives the test, for however short a time, to leave no cgroup behind.
keep_cgroup() {
    local root=/sys/fs/cgroup/unified cgroup
    [ -f /sys/fs/cgroup/cgroup.controllers ] && root=/sys/fs/cgroup
    cgroup=$(mktemp -d "$root/quietlark-test-XXXXXX" 2>/dev/null) || { echo "No cgroup can be made in $root."; return; }
    # Does not end while anything in the namespace lives.
    (
        echo "$BASHPID" >"$cgroup/cgroup.procs"
        exec unshare --mount --propagation private --cgroup --pid --fork --kill-child --mount-proc \
            bash "$0" "$directory" "$user" inside
    ) || true
    local attempt
    for ((attempt = 0; attempt < 250; ++attempt)); do
        find "$cgroup" -depth -type d -exec rmdir {} + 2>/dev/null && break
        sleep 0.02
    done
}

if [ -n "$inside" ]; then
    run_inside
elif [ "$(id -u)" != 0 ]; then
    echo "Only root can give a service manager a cgroup of its own."
else
    # In the background, since this process is killed together with the test.
    keep_cgroup <&0 &
    wait
fi
