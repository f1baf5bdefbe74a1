#!/usr/bin/env bash
# An editor of another toolkit, which asks for other formats of the clipboard.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

write_configuration
start_server
start_quietlark
document="$desktop/letter.txt"
open_featherpad "$document"

say_holding_hotkey 'hello how are you'
expect 'the text' 'hello how are you' "$(text_of_editor "$document")"
