# shellcheck shell=bash
# One dictation on a virtual desktop, from the spoken sentence to the text in an editor.

clipboard_before='copied before the dictation'

# demonstrate SENTENCE RECORDING SCREENSHOT.png: the recording, when one is named, else the sentence.
demonstrate() {
    local scratch recording=$2
    say "Opening a virtual desktop with a microphone"
    open_virtual_desktop
    start_microphone
    scratch="$desktop/scratch.txt"
    say "Starting the speech server, Quietlark and an editor (mousepad)"
    if [ -z "$recording" ]; then
        recording="$desktop/speech.wav"
        synthesise "$1" "$recording"
    fi
    start_server
    choose_started_server
    write_configuration
    start_quietlark
    open_mousepad "$scratch"
    put_on_clipboard "$clipboard_before"
    say "Holding ctrl+alt+space while the sentence is spoken into the microphone"
    dictate "$recording"
    say "Waiting for the text"
    report "$scratch" "$3"
}

# report SCRATCH SCREENSHOT: the last line of standard output is what arrived.
report() {
    local arrived=1
    save_text_of_editor 120 || arrived=0
    take_screenshot "$2"
    printf 'screenshot: %s\n' "$2"
    [ "$arrived" = 1 ] || fail "Nothing was pasted into the editor within two minutes."
    wait_until 30 clipboard_holds "$clipboard_before" ||
        fail "The clipboard holds \"$(clipboard)\" and not \"$clipboard_before\"."
    printf 'clipboard: "%s", as before the dictation\n' "$(clipboard)"
    printf 'pasted: %s\n' "$(cat "$1")"
}
