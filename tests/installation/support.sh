# shellcheck shell=bash
# What every test here stands on. The first argument is the folder of the programs.
set -euo pipefail
bin=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(dirname "$bin")
for part in messages processes; do
    # shellcheck source=/dev/null
    . "$root/scripts/lib/$part.sh"
done

scratch=$(mktemp -d /tmp/quietlark-installation.XXXXXX)
at_end() { :; }
leave() {
    local status=$1
    at_end
    rm -rf "$scratch"
    exit "$status"
}
trap 'leave $?' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# install_into FOLDER
install_into() {
    cmake --install "$build" --prefix "$1" >"$scratch/log" 2>&1 || {
        cat "$scratch/log" >&2
        return 1
    }
}

# expect WHAT WANTED FOUND
expect() {
    [ "$2" = "$3" ] || fail "$1: wanted \"$2\", found \"$3\"."
}
