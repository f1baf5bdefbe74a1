#!/usr/bin/env bash
# Where packages have other names nothing is installed: what is missing is named.
# shellcheck source=run_support.sh
. "$(dirname "$0")/run_support.sh"

printf 'ID=another\nVERSION_ID=1\n' >"$scratch/os-release"
mkdir "$scratch/few_programs"
for program in awk bash dirname env pkg-config sed setsid; do
    ln -s "$(command -v "$program")" "$scratch/few_programs/$program"
done

status=0
PATH="$scratch/few_programs" QUIETLARK_OS_RELEASE="$scratch/os-release" run --virtual || status=$?
expect 'the exit status' 1 "$status"
said 'missing: command mousepad (Debian: mousepad)'
said 'missing: command c++ (Debian: g++)'
said 'run: This is not Debian 12. Please install the above with your distribution'\''s tools.'
! grep -qE 'header|command (awk|pkg-config)' "$scratch/err" || fail 'Too much is named missing.'
