#!/usr/bin/env bash
# Without root, packages are installed through sudo; without that, the command to run is named.
# shellcheck source=run_support.sh
. "$(dirname "$0")/run_support.sh"

# An ordinary user on a machine that lacks everything.
programs="$scratch/programs"
mkdir "$programs"
printf '#!/bin/sh\necho 1000\n' >"$programs/id"
printf '#!/bin/sh\nexit 1\n' >"$programs/dpkg-query"
printf 'ID=debian\nVERSION_ID=12\n' >"$scratch/os-release"
for program in apt-get awk bash comm dirname env sed setsid sort; do
    ln -s "$(command -v "$program")" "$programs/$program"
done
chmod +x "$programs/id" "$programs/dpkg-query"

run_as_user() {
    local status=0
    PATH="$programs" QUIETLARK_OS_RELEASE="$scratch/os-release" run --virtual || status=$?
    expect 'the exit status' 1 "$status"
}

run_as_user
grep -q 'Installing packages needs root, and there is no sudo. As root, run: apt-get install .*g++' \
    "$scratch/err" || fail 'It did not say what to do without sudo.'

# One that is asked, and has something against it.
printf '#!/bin/sh\necho "$@" >>"%s"\nexit 1\n' "$scratch/asked" >"$programs/sudo"
chmod +x "$programs/sudo"
run_as_user
grep -q '^env DEBIAN_FRONTEND=noninteractive apt-get .* install .*--no-remove .*g++' \
    "$scratch/asked" || fail "sudo was not asked to install: $(cat "$scratch/asked")"
