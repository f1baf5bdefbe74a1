#!/usr/bin/env bash
# usage: openai_client.sh SERVER_PROGRAM CLIENT_FOLDER
#
# An OpenAI client that others wrote against the server. npm installs it in CLIENT_FOLDER, unless
# QUIETLARK_OPENAI_CLIENT names a folder that has it. Skips (77) where there is no npm, or nothing to
# fetch it from.
set -euo pipefail
version=6.49.0

skip() {
    echo "skipped: $1"
    exit 77
}

# The client's own requirement.
node --eval 'process.exit(Number(process.versions.node.split(".")[0]) >= 20 ? 0 : 1)' 2>/dev/null ||
    skip "there is no node of version 20 or later"
client=${QUIETLARK_OPENAI_CLIENT:-$2}
installed="$client/node_modules/openai/package.json"
if [ -z "${QUIETLARK_OPENAI_CLIENT:-}" ] && ! grep -qs "\"version\": \"$version\"" "$installed"; then
    command -v npm >/dev/null || skip "there is no npm"
    mkdir -p "$client"
    npm install --prefix "$client" --ignore-scripts --no-audit --no-fund --no-package-lock \
        --fetch-retries 1 --fetch-timeout 20000 "openai@$version" >"$client/npm.log" 2>&1 ||
        skip "npm cannot install openai: $(grep -m 1 'npm ERR!\|npm error' "$client/npm.log")"
fi
[ -e "$installed" ] || skip "$client has no openai"

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
