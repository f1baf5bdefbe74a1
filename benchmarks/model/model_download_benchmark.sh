#!/usr/bin/env bash
# model_download_benchmark.sh BENCHMARK FILE_SERVER: the download of a file as large as the model
# (1.6 GB), hashed and synced, beside curl, from the same server to the same disk in turns.
set -euo pipefail
benchmark=$1 file_server=$2
bytes=1624555275
rounds=3

home=$(mktemp -d)
cleanup() {
    exec 3>&- || true
    [ -z "${server:-}" ] || wait "$server" || true
    rm -rf "$home"
}
trap cleanup EXIT

head -c "$bytes" /dev/urandom >"$home/model.bin"
sync "$home/model.bin"
digest=$(sha256sum "$home/model.bin" | cut -d ' ' -f 1)
mkfifo "$home/input" "$home/output"
"$file_server" "$home/model.bin" <"$home/input" >"$home/output" &
server=$!
exec 3>"$home/input"
read -r url <"$home/output"

seconds() {
    local TIMEFORMAT='%R s (processor %U + %S s)'
    { time "$@" >/dev/null; } 2>&1
}
with_curl() { curl -s -o "$home/out" "$url"; }
with_curl_hashed() { curl -s "$url" | tee "$home/out" | sha256sum; }
with_curl_synced() { curl -s -o "$home/out" "$url" && sync "$home/out"; }

for _ in $(seq "$rounds"); do
    for way in with_curl with_curl_synced with_curl_hashed; do
        printf '%-18s %s\n' "$way" "$(seconds "$way")"
        rm -f "$home/out"
    done
    printf '%-18s ' quietlark
    XDG_DATA_HOME="$home/data" QUIETLARK_MODEL_URL="$url" QUIETLARK_MODEL_SHA256="$digest" \
        "$benchmark"
    rm -rf "$home/data"
done
