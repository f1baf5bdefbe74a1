#!/usr/bin/env bash
# usage: openai_client.sh SERVER_PROGRAM
#
# An OpenAI client that others wrote against the server. It is not fetched here: QUIETLARK_OPENAI_CLIENT
# names a folder in which "npm install openai" was run. Skips (77) without it.
set -euo pipefail

skip() {
    echo "skipped: $1"
    exit 77
}

command -v node >/dev/null || skip "there is no node"
client=${QUIETLARK_OPENAI_CLIENT:-}
[ -d "$client/node_modules/openai" ] ||
    skip "QUIETLARK_OPENAI_CLIENT names no folder with the npm package openai"

folder=$(mktemp -d)
server=
cleanup() {
    [ -z "$server" ] || kill "$server" 2>/dev/null || true
    rm -rf "$folder"
}
trap cleanup EXIT

sentence="hello how are you"
flite -voice rms --setf duration_stretch=1.2 -t "$sentence" -o "$folder/speech.wav"
"$1" --engine pocketsphinx --endpoint-file "$folder/endpoint" >"$folder/output" &
server=$!
until url=$(sed -n 's/^listening on //p' "$folder/output") && [ -n "$url" ]; do
    kill -0 "$server" 2>/dev/null || exit 1
    read -rt 0.05 <> <(:) || true
done
node "$(dirname "$0")/openai_client.mjs" "$client" "$url" "$folder/speech.wav" "$sentence"
