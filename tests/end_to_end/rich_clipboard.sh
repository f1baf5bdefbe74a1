#!/usr/bin/env bash
# Whatever was copied before, in as many formats as it had, is back after the dictation.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

formats() {
    timeout 30 xclip -selection clipboard -out -target TARGETS |
        grep -vxE 'TARGETS|MULTIPLE|TIMESTAMP|SAVE_TARGETS'
}

# save_clipboard FOLDER: each format's bytes in a file of its own.
save_clipboard() {
    local format
    mkdir "$1"
    for format in $(formats); do
        timeout 30 xclip -selection clipboard -out -target "$format" >"$1/${format//[^A-Za-z0-9]/-}"
    done
}

clipboard_is_back() {
    formats | grep -qx image/png
}

write_configuration
start_server
start_quietlark
document="$desktop/letter.txt"
open_mousepad "$document"
start clipboard_owner "$bin/end_to_end_clipboard_owner"
wait_for_line 60 "$started_id" "$logs/clipboard_owner.out" copied || fail 'Nothing was copied.'
save_clipboard "$desktop/before"
picture_bytes=$(stat -c %s "$desktop/before/image-png")
[ "$picture_bytes" -gt 8000000 ] || fail "The picture has only $picture_bytes bytes."

say_holding_hotkey 'one two three four five'
expect 'the text' 'one two three four five' "$(text_of_editor "$document")"
wait_until 30 clipboard_is_back || fail 'What was copied before is not on the clipboard again.'
save_clipboard "$desktop/after"
diff -r "$desktop/before" "$desktop/after" || fail 'The clipboard differs from what it was.'
