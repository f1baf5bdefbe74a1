#!/usr/bin/env bash
# A run that is interrupted in the middle of a dictation leaves neither programs nor folders.
# shellcheck source=run_support.sh
. "$(dirname "$0")/run_support.sh"

run --virtual --say 'one two three four five' &
run_id=$!
wait_until 300 grep -q 'Holding' "$scratch/err" || fail 'The run did not get as far as a dictation.'
[ -n "$(remains)" ] || fail 'The programs of the run are not where this test looks for them.'

# What Ctrl-C does: every program of the terminal's group gets the signal.
kill -INT -- "-$(cat "$scratch/id")"
status=0
wait "$run_id" || status=$?
expect 'the exit status' 130 "$status"
expect 'what is left of it' '' "$(remains)"
