# shellcheck shell=bash
# What every test here stands on: an open desktop with a microphone, and words to say what is
# expected. The first argument is the folder of the programs.
set -euo pipefail
bin=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
for part in messages processes virtual_desktop virtual_microphone editors quietlark; do
    # shellcheck source=/dev/null
    . "$root/scripts/lib/$part.sh"
done

before_failing() {
    [ -z "${logs:-}" ] || show_logs
}

trap close_virtual_desktop EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# expect WHAT WANTED FOUND
expect() {
    [ "$2" = "$3" ] || fail "$1: wanted \"$2\", found \"$3\"."
}

# speech SENTENCE: leaves the sentence as a sound file in $speech.
speech() {
    speech="$desktop/${1// /-}.wav"
    [ -e "$speech" ] || synthesise "$1" "$speech"
}

# say_holding_hotkey SENTENCE [KEYS]
say_holding_hotkey() {
    speech "$1"
    dictate "$speech" "${2:-$default_hotkey}"
}

# text_of_editor FILE: what is in the document once something new has arrived.
text_of_editor() {
    save_text_of_editor 120 || fail "Nothing arrived in the editor."
    cat "$1"
}

open_virtual_desktop
start_microphone
