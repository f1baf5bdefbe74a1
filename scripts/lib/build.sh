# shellcheck shell=bash

# configure PRESET
configure() {
    say "Configuring the $1 build"
    cmake -S "$root" --preset "$1" >&2 || fail "The $1 build could not be configured."
}

# build PRESET [TARGET...]: all targets when none is named.
build() {
    local preset=$1 folder="$root/build/$1" targets=()
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    [ -e "$folder/build.ninja" ] || configure "$preset"
    say "Building $preset (a first time takes minutes, later only what changed)"
    cmake --build "$folder" --parallel "$(nproc)" "${targets[@]}" >&2 ||
        fail "The $preset build failed; the compiler's messages are above."
}
