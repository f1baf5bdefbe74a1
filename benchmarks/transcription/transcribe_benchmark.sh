#!/usr/bin/env bash
# transcribe_benchmark.sh QUIETLARK INSTANT_SERVER [SECONDS]
#
# What the program itself costs: `quietlark transcribe` beside curl, with the same recording and a
# server that answers at once. Needs hyperfine and curl.
set -euo pipefail
quietlark=$1 instant_server=$2 seconds=${3:-10}

scratch=$(mktemp -d)
coproc server { exec "$instant_server"; }
trap 'kill "$server_PID"; rm -rf "$scratch"' EXIT
read -r port <&"${server[0]}"
url=http://127.0.0.1:$port

# A number as little-endian bytes: little COUNT NUMBER.
little() {
    local count=$1 number=$2 byte
    for ((byte = 0; byte < count; byte++)); do
        printf '%b' "\\x$(printf %02x $((number >> 8 * byte & 255)))"
    done
}
wav=$scratch/recording.wav
bytes=$((seconds * 32000))
{
    printf RIFF; little 4 $((bytes + 36)); printf 'WAVEfmt '
    little 4 16; little 2 1; little 2 1; little 4 16000; little 4 32000; little 2 2; little 2 16
    printf data; little 4 "$bytes"; head -c "$bytes" /dev/urandom
} >"$wav"

export XDG_CONFIG_HOME=$scratch
hyperfine --warmup 5 --min-runs 50 --shell=none \
    --command-name 'quietlark --version' "$quietlark --version" \
    --command-name 'curl --version' 'curl --version' \
    --command-name 'quietlark transcribe' "$quietlark transcribe $wav --server $url/inference" \
    --command-name 'curl -F' "curl -sS -F file=@$wav -F response_format=json $url/inference" \
    --command-name 'quietlark transcribe, with two probes' \
    "$quietlark transcribe $wav --server $url"
