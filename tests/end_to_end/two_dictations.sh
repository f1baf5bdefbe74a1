#!/usr/bin/env bash
# Two dictations in a row: both arrive, the server is asked what it speaks before the first alone.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

uploads_are() {
    [ "$(requests_of_server | grep -c '^POST ')" = "$1" ]
}

# What was asked since the line that follows the given number of requests, by method.
methods_after() {
    requests_of_server | tail -n "+$(($1 + 1))" | cut -d ' ' -f 1
}

write_configuration
start_server
start_quietlark
document="$desktop/letter.txt"
open_mousepad "$document"

say_holding_hotkey 'hello world'
expect 'the first text' 'hello world' "$(text_of_editor "$document")"
wait_until 30 uploads_are 1 || fail 'The server did not log the first upload.'
methods=$(methods_after 0)
expect 'the first dictation begins with a probe' GET "$(head -n 1 <<<"$methods")"
expect 'the first dictation ends with the upload' POST "$(tail -n 1 <<<"$methods")"

requests_before=$(requests_of_server | wc -l)
say_holding_hotkey 'the weather is nice today'
expect 'both texts' 'hello worldthe weather is nice today' "$(text_of_editor "$document")"
wait_until 30 uploads_are 2 || fail 'The server did not log the second upload.'
expect 'the requests of the second dictation' POST "$(methods_after "$requests_before")"
