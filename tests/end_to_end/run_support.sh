# shellcheck shell=bash
# What the tests of scripts/run stand on. The first argument is the folder of the programs, which
# are built already.
set -euo pipefail
preset=$(basename "$(dirname "$1")")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
for part in messages processes; do
    # shellcheck source=/dev/null
    . "$root/scripts/lib/$part.sh"
done

scratch=$(mktemp -d /tmp/quietlark-run.XXXXXX)
mkdir "$scratch/temporary"

before_failing() {
    cat "$scratch/out" "$scratch/err" >&2
}

leave() {
    local status=$1
    [ ! -s "$scratch/id" ] || kill -TERM -- "-$(cat "$scratch/id")" 2>/dev/null || true
    rm -rf "$scratch"
    exit "$status"
}
trap 'leave $?' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# run OPTION...: as a terminal starts it, in a group of its own that can be interrupted.
run() {
    env --default-signal=INT TMPDIR="$scratch/temporary" setsid --wait \
        bash -c 'echo $$ >"$0"; exec "$@"' "$scratch/id" \
        "$BASH" "$root/scripts/run" --preset "$preset" "$@" >"$scratch/out" 2>"$scratch/err"
}

# The processes that a run has left, and its files.
remains() {
    grep -lzsxF "TMPDIR=$scratch/temporary" /proc/[0-9]*/environ || true
    ls "$scratch/temporary"
}

# expect WHAT WANTED FOUND
expect() {
    [ "$2" = "$3" ] || fail "$1: wanted \"$2\", found \"$3\"."
}

# said LINE: on standard error.
said() {
    grep -qxF "$1" "$scratch/err" || fail "It did not say: $1"
}
