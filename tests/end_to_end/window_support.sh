# shellcheck shell=bash
# The windows as somebody sees and works them. What they show is asked of them as a screen reader asks.
# shellcheck source=support.sh
. "$(dirname "${BASH_SOURCE[0]}")/support.sh"

skip() {
    echo "skipped: $1"
    exit 77
}

[ -n "$network_id" ] || skip 'the permissions need a network, its namespaces need root'

screen_reader() {
    timeout 30 /usr/bin/python3 "$root/tests/end_to_end/screen_reader.py" "$@"
}

accessibility_bus_is_known() {
    gdbus call --session --dest org.freedesktop.DBus --object-path / \
        --method org.freedesktop.DBus.NameHasOwner org.a11y.Bus | grep -q true
}

# Tells programs that there is a screen reader, as one does.
start_screen_reader() {
    start accessibility /usr/libexec/at-spi-bus-launcher
    wait_until 30 accessibility_bus_is_known || fail 'The accessibility bus did not start.'
    gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus \
        --method org.freedesktop.DBus.Properties.Set org.a11y.Status ScreenReaderEnabled '<true>' \
        >/dev/null || fail 'The accessibility bus does not answer.'
}

# shows ROLE NAME: now.
shows() {
    screen_reader find "$1" "$2"
}

# sees ROLE NAME: within a while. What nobody could hear read out is never right.
sees() {
    wait_until "${3:-60}" shows "$1" "$2" ||
        fail "There is no $1 \"$2\". There is: $(screen_reader shown)"
    expect 'what a screen reader cannot read' '' "$(screen_reader faults)"
}

click_at() {
    xdotool mousemove "$1" "$2" click 1
}

# clicks ROLE NAME
clicks() {
    local place
    sees "$1" "$2"
    read -ra place <<<"$(screen_reader find "$1" "$2")"
    click_at "${place[@]}"
}

key() {
    xdotool key "$@"
}

has_keyboard() {
    [[ $(screen_reader focused) = "$1: $2"* ]]
}

keyboard_has_left() {
    [ "$(screen_reader focused)" != "$1" ]
}

# goes_to ROLE NAME: by the Tab key.
goes_to() {
    local presses before
    for ((presses = 0; presses < 12; presses++)); do
        has_keyboard "$1" "$2" && return
        before=$(screen_reader focused)
        key Tab
        wait_until 10 keyboard_has_left "$before" || break
    done
    fail "The Tab key does not lead to the $1 \"$2\" but to: $(screen_reader focused)"
}

waits_for_keyboard() {
    wait_until 30 has_keyboard "$1" "$2" ||
        fail "The keyboard is not at the $1 \"$2\" but at: $(screen_reader focused)"
}

configuration="$XDG_CONFIG_HOME/Quietlark/config.json"

setting_is() {
    grep -qE "\"$1\": *$2,?\$" "$configuration"
}

# is_at STEP: the wizard has come to the step of that number, and has noted it.
is_at() {
    wait_until 30 setting_is onboardingStep "$1" ||
        fail "The wizard is not at step $1: $(cat "$configuration"; screen_reader shown)"
}

open_wizard() {
    start_quietlark
    open_window '^Welcome to Quietlark$'
}

wizard_is_gone() {
    ! xdotool search --onlyvisible --name '^Welcome to Quietlark$' >/dev/null
}

# leave_and_come_back COMMAND...: closes the wizard so, ends the program, and starts both again.
leave_and_come_back() {
    "$@"
    wait_until 30 wizard_is_gone || fail 'The wizard does not close.'
    end "$quietlark_id"
    open_wizard
}

trial_box_holds() {
    [ "$(screen_reader text text 'Try it out')" = "$1" ]
}

# tries_out SENTENCE: into the box, which has the keyboard.
tries_out() {
    say_holding_hotkey "$1"
    wait_until 120 trial_box_holds "$1" ||
        fail "The box holds \"$(screen_reader text text 'Try it out')\" and not \"$1\"."
}

wizard_is_finished() {
    setting_is onboardingComplete true && wizard_is_gone
}

# dictates_elsewhere SENTENCE: after the wizard, into an editor.
dictates_elsewhere() {
    wait_until 30 wizard_is_finished || fail "The wizard has not ended: $(cat "$configuration")"
    open_mousepad "$desktop/letter.txt"
    say_holding_hotkey "$1"
    expect 'the text in the editor' "$1" "$(text_of_editor "$desktop/letter.txt")"
}
