#!/usr/bin/env bash
# Without its server a dictation pastes nothing and leaves the clipboard alone; the application
# goes on, and the next dictation after the server's return works.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

copied='copied by the user'

write_configuration
start_server
start_quietlark
document="$desktop/letter.txt"
open_mousepad "$document"
put_on_clipboard "$copied"

end "$server_id"
say_holding_hotkey 'open the door'
wait_until 30 grep -q 'No server configured' "$logs/quietlark.err" ||
    fail 'Quietlark did not say that there is no server.'
expect 'the clipboard' "$copied" "$(clipboard)"
is_running "$quietlark_id" || fail 'Quietlark is no longer running.'

start_server
say_holding_hotkey 'hello how are you'
expect 'the text' 'hello how are you' "$(text_of_editor "$document")"
wait_until 30 clipboard_holds "$copied" || fail 'The clipboard was not put back.'
