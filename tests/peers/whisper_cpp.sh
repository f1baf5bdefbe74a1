#!/usr/bin/env bash
# usage: whisper_cpp.sh FOLDER
#
# Builds whisper.cpp's own server as FOLDER/whisper-server, unless QUIETLARK_WHISPER_SERVER names
# another to test, and writes FOLDER/model.bin, which hears one sentence in every recording. Debian 12
# has no package of it, so its sources come from a package of the npm registry that carries them as
# they are. Skips (77) where there is no npm, or nothing to fetch the sources from.
set -euo pipefail
package=nodejs-whisper version=0.3.1  # which has whisper.cpp 1.9.1
sources_sha256=92041caf2b26c74b7f489fedf37bd093f216eebd61df512045ec2d19d0531d37
peers=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
program="$folder/whisper-server"

skip() {
    echo "skipped: $1"
    exit 77
}

fetch_sources() {
    local archive="$folder/$package-$version.tgz"
    command -v npm >/dev/null || skip "there is no npm"
    npm pack --fetch-retries 1 --fetch-timeout 60000 --pack-destination "$folder" \
        "$package@$version" >"$folder/npm.log" 2>&1 ||
        skip "npm cannot fetch $package: $(grep -m 1 'npm ERR!\|npm error' "$folder/npm.log")"
    echo "$sources_sha256  $archive" | sha256sum --check --quiet
    rm -rf "$folder/sources"
    mkdir "$folder/sources"
    tar -xzf "$archive" -C "$folder/sources" --strip-components 3 package/cpp/whisper.cpp
    rm "$archive"
}

# Slow code that compiles in a third of the time: the model asks little of it.
build_program() {
    local launcher=()
    if command -v ccache >/dev/null; then
        launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    rm -rf "$folder/build"
    cmake -S "$folder/sources" -B "$folder/build" -G Ninja "${launcher[@]}" \
        -DCMAKE_BUILD_TYPE=None -DCMAKE_C_FLAGS="-O1 -DNDEBUG" -DCMAKE_CXX_FLAGS="-O1 -DNDEBUG" \
        -DBUILD_SHARED_LIBS=OFF -DWHISPER_BUILD_TESTS=OFF -DGGML_CCACHE=OFF -DGGML_OPENMP=OFF \
        -DGGML_LLAMAFILE=OFF -DGGML_CPU_REPACK=OFF
    cmake --build "$folder/build" --target whisper-server --parallel 2
    mv "$folder/build/bin/whisper-server" "$program"
    rm -r "$folder/build" "$folder/sources"
}

# The tests of two builds may run at once, and share the folder.
mkdir -p "$folder"
exec 9>"$folder/lock"
flock 9

if [ -n "${QUIETLARK_WHISPER_SERVER:-}" ]; then
    [[ $QUIETLARK_WHISPER_SERVER = /* && -x $QUIETLARK_WHISPER_SERVER ]] || {
        echo "QUIETLARK_WHISPER_SERVER is not the absolute path of a program." >&2
        exit 1
    }
elif [ ! -x "$program" ] || ! cmp --silent "${BASH_SOURCE[0]}" "$folder/built-by"; then
    fetch_sources
    build_program
    cp "${BASH_SOURCE[0]}" "$folder/built-by"
fi
"$peers/whisper_model.py" "$folder/model.bin.new"
mv "$folder/model.bin.new" "$folder/model.bin"
