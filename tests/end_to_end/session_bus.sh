#!/usr/bin/env bash
# The program runs once in a session: a second start shows the first one's window, and the commands
# drive it.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

state_is() {
    [ "$("$bin/quietlark" dictation status)" = "$1" ]
}

preferences_are_open() {
    xdotool search --onlyvisible --name '^Quietlark( Preferences)?$'
}

start_server
choose_started_server
write_configuration
start_quietlark
document="$desktop/letter.txt"
open_mousepad "$document"
[ -z "$network_id" ] || "$bin/quietlark" doctor >"$logs/doctor" ||
    fail "The doctor is not content: $(cat "$logs/doctor")"

expect 'the answer to start' recording "$("$bin/quietlark" dictation start)"
wait_until_recording
speech 'open the door'
say_into_microphone "$speech"
expect 'the answer to toggle' transcribing "$("$bin/quietlark" dictation toggle)"
expect 'the text' 'open the door' "$(text_of_editor "$document")"
wait_until 30 state_is idle || fail "Dictation does not come to rest."

! preferences_are_open >/dev/null || fail 'A window is open before anybody asked for one.'
"$bin/quietlark" 2>"$logs/second.err" || fail 'The second start failed.'
grep -q 'runs already' "$logs/second.err" || fail 'The second start did not say what it did.'
wait_until 30 preferences_are_open || fail 'The first one did not open its window.'
expect 'the number of processes' 1 "$(pgrep --count --full "^$bin/quietlark\$" || true)"
