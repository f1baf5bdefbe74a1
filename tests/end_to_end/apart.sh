#!/usr/bin/env bash
# A test that begins by sourcing this runs where its file system is a layer over the computer's, which
# goes with the test, so that it may install programs for all users. The source, with its build folder,
# has a layer of its own, and everybody may read it. It takes root, and a kernel that lets root do that.
#
# The layer is in /mnt/upper, the computer's file system in /mnt/lower.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

cannot() {
    echo "A file system cannot be laid over this computer's: $1."
    exit 77
}

# The first process in the new namespaces: the kernel ends all others when it ends.
enter() {
    mount -t tmpfs tmpfs /mnt || cannot "nothing can be mounted"
    mkdir /mnt/upper /mnt/lower /mnt/work /mnt/root /mnt/source{,_upper,_work}
    mount --bind / /mnt/lower
    mount -t overlay -o lowerdir=/,upperdir=/mnt/upper,workdir=/mnt/work overlay /mnt/root ||
        cannot "there is no overlay"
    local part
    mount -t tmpfs -o mode=1777 tmpfs /mnt/root/tmp
    for part in /proc /sys /dev; do
        mount --rbind "$part" "/mnt/root$part"
    done
    # It may be on another file system.
    mount --bind "$root" /mnt/source
    mkdir -p "/mnt/root$root"
    mount -t overlay -o lowerdir=/mnt/source,upperdir=/mnt/source_upper,workdir=/mnt/source_work \
        overlay "/mnt/root$root" || cannot "there is no overlay of the source"
    part=$root
    until [ "$part" = / ]; do
        chmod a+rx "/mnt/root$part"
        part=$(dirname "$part")
    done
    mount --rbind /mnt /mnt/root/mnt
    cd /mnt/root
    pivot_root . .
    umount -l .
    cd /
    QUIETLARK_APART=yes exec bash "$@"
}

if [ "${BASH_SOURCE[0]}" = "$0" ]; then
    set -euo pipefail
    enter "$@"
elif [ -z "${QUIETLARK_APART:-}" ]; then
    [ "$(id -u)" = 0 ] || cannot "only root may"
    unshare --mount --pid --fork true 2>/dev/null || cannot "there are no namespaces"
    exec unshare --mount --propagation private --pid --fork --kill-child --mount-proc \
        bash "${BASH_SOURCE[0]}" "$(realpath "$0")" "$@"
fi
