#!/usr/bin/env bash
# model_download_benchmark.sh BENCHMARK FILE_SERVER [ROUNDS]: the download of a file as large as the
# model (1.6 GB) beside curl, from the same server to the same disk in turns. Prints every round,
# then the medians and what they are to each other. Quietlark verifies the checksum and syncs;
# `curl` does neither, `curl+sync` syncs, `curl+sha256sum` verifies. Fails when Quietlark's median is
# more than 1.1 times curl's, or a download took more than 20 MB or 10 ms of the main thread at once.
set -euo pipefail
benchmark=$1 file_server=$2 rounds=${3:-5}
bytes=1624555275
most=1.1
failed=0

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

curl_alone() { curl -s -o "$home/out" "$url"; }
curl_synced() { curl -s -o "$home/out" "$url" && sync "$home/out"; }
curl_hashed() { curl -s "$url" | tee "$home/out" | sha256sum; }
quietlark() {
    XDG_DATA_HOME="$home/data" QUIETLARK_MODEL_URL="$url" QUIETLARK_MODEL_SHA256="$digest" \
        "$benchmark" >"$home/costs" || failed=1
}

# measure NAME FUNCTION: one download, from a disk at rest; adds a line "NAME SECONDS".
measure() {
    local TIMEFORMAT=%R seconds
    { time "$2" >/dev/null; } 2>"$home/seconds"
    seconds=$(tail -n 1 "$home/seconds")
    echo "$1 $seconds" >>"$home/times"
    printf '%-15s %s s\n' "$1" "$seconds"
    rm -rf "$home/out" "$home/data"
    sync
}
median() {
    grep "^$1 " "$home/times" | cut -d ' ' -f 2 | sort -n |
        awk '{ values[NR] = $1 } END { print (values[int((NR + 1) / 2)] + values[int(NR / 2) + 1]) / 2 }'
}

for _ in $(seq "$rounds"); do
    measure curl curl_alone
    measure quietlark quietlark
    printf '                %s\n' "$(cat "$home/costs")"
    measure curl+sync curl_synced
    measure curl+sha256sum curl_hashed
done

ours=$(median quietlark)
echo "medians of $rounds:"
printf '%-15s %s s\n' quietlark "$ours"
for name in curl curl+sync curl+sha256sum; do
    theirs=$(median "$name")
    printf '%-15s %s s, quietlark takes %.2f of it\n' "$name" "$theirs" \
        "$(awk "BEGIN { print $ours / $theirs }")"
done
awk "BEGIN { exit !($ours <= $most * $(median curl)) }" || failed=1
uptime
exit "$failed"
