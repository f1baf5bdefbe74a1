#!/usr/bin/env bash
# The first run by the mouse: the server on this computer, whose model is downloaded, and which a real
# service manager then starts; a dictation into the wizard's own box and one elsewhere. Half-way the
# wizard is closed, and comes up where it was.
# shellcheck source=window_support.sh
. "$(dirname "$0")/window_support.sh"
# shellcheck source=server_unit.sh
. "$(dirname "$0")/server_unit.sh"

# The button of the window's frame.
close_by_its_frame() {
    local X Y WIDTH frame
    eval "$(xdotool getwindowgeometry --shell "$window" | grep -E '^(X|Y|WIDTH)=')"
    frame=$(xprop -id "$window" _NET_FRAME_EXTENTS | sed 's/.*= //; s/,//g')
    click_at $((X + WIDTH - 10)) $((Y - $(cut -d ' ' -f 3 <<<"$frame") / 2))
}

# The place that the model comes from, which keeps it to itself until it may go on.
start_model_host() {
    head -c 5000000 /dev/urandom >"$desktop/model.bin"
    start model_host sh -c 'sleep infinity | exec "$0" "$1"' "$bin/file_server" "$desktop/model.bin"
    model_host_id=$started_id
    wait_for_line 60 "$model_host_id" "$logs/model_host.out" '^http' || fail 'There is no model to fetch.'
    QUIETLARK_MODEL_URL=$(cat "$logs/model_host.out")
    QUIETLARK_MODEL_SHA256=$(sha256sum "$desktop/model.bin" | cut -d ' ' -f 1)
    export QUIETLARK_MODEL_URL QUIETLARK_MODEL_SHA256
    kill -STOP -- "-$model_host_id"
}

start_manager_of_server
start_screen_reader
start_model_host
open_wizard

sees label 'Welcome to Quietlark'
clicks 'push button' Next

is_at 1
clicks 'radio button' 'On the network'
clicks 'radio button' 'On this computer'
clicks 'push button' Connect

is_at 2
sees image Granted
clicks 'push button' Back
is_at 1
clicks 'push button' Connect
is_at 2

leave_and_come_back close_by_its_frame
sees label 'Grant permissions'
clicks 'push button' Next

is_at 3
clicks 'push button' Next

is_at 4
sees label 'Downloading the transcription model. This only happens once.'
sees 'progress bar' 'Model download'
kill -CONT -- "-$model_host_id"
sees label "You're all set!" 120
clicks text 'Try it out'
tries_out 'hello world'
clicks 'push button' Finish
dictates_elsewhere 'open the door'
