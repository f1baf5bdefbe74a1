# shellcheck shell=bash

# alone COMMAND...: one run at a time configures and builds here. Only this shell holds the lock: a
# program that outlives the build does not keep it.
alone() {
    local lock status=0
    mkdir -p "$root/build"
    exec {lock}>"$root/build/.lock"
    if ! flock --nonblock "$lock"; then
        say "Waiting for another run that is building here"
        flock "$lock"
    fi
    "$@" >&2 {lock}>&- || status=$?
    exec {lock}>&-
    return "$status"
}

# configure PRESET
configure() {
    say "Configuring the $1 build"
    alone cmake -S "$root" --preset "$1" || fail "The $1 build could not be configured."
}

# build PRESET [TARGET...]: all targets when none is named.
build() {
    local preset=$1 folder="$root/build/$1" targets=()
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    [ -e "$folder/build.ninja" ] || configure "$preset"
    say "Building $preset (a first time takes minutes, later only what changed)"
    alone cmake --build "$folder" --parallel "$(nproc)" "${targets[@]}" ||
        fail "The $preset build failed; the compiler's messages are above."
}
