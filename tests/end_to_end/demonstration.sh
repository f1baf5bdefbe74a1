#!/usr/bin/env bash
# The last line of a run on a virtual desktop is what arrived in the editor.
# shellcheck source=run_support.sh
. "$(dirname "$0")/run_support.sh"

run --virtual --say 'hello world' || fail 'The run failed.'
expect 'the last line' 'pasted: hello world' "$(tail -n 1 "$scratch/out")"
expect 'what is left of it' '' "$(remains)"
