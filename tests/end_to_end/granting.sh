#!/usr/bin/env bash
# What only the user can allow: the microphone, which is not there, and the speech server, whose service
# is masked. The windows wait for both, show where to allow them, and go on by themselves.
# shellcheck source=window_support.sh
. "$(dirname "$0")/window_support.sh"
# shellcheck source=server_unit.sh
. "$(dirname "$0")/server_unit.sh"

start_manager_of_server

before_failing() {
    show_logs
    beside_manager "systemctl --user --no-pager status $service" || true
    tail -n 20 "$owner.err" >&2
}

systemctl_does() {
    beside_manager "systemctl --user $*" || fail "This failed: systemctl --user $*"
}

# What would show the user something notes what it was to show.
stand_in_for() {
    printf '#!/bin/sh\necho "%s $*" >>"%s"\n' "$1" "$desktop/opened" >"$desktop/programs/$1"
    chmod +x "$desktop/programs/$1"
}

# opens PATTERN COMMAND...: what the command does shows the user that.
opens() {
    local pattern=$1
    shift
    : >"$desktop/opened"
    "$@"
    wait_until 30 grep -q "$pattern" "$desktop/opened" ||
        fail "The user is not shown $pattern but: $(cat "$desktop/opened")"
}

server_runs() {
    beside_manager "systemctl --user is-active $service"
}

preferences_are_gone() {
    ! xdotool search --onlyvisible --name '^Quietlark$' >/dev/null
}

mkdir "$desktop/programs"
for program in xdg-open pavucontrol; do stand_in_for "$program"; done
export PATH="$desktop/programs:$PATH"
start_screen_reader
systemctl_does daemon-reload
systemctl_does mask "$service"
mkdir -p "$XDG_DATA_HOME/Quietlark/models"
: >"$XDG_DATA_HOME/Quietlark/models/active.bin"
write_configuration
sed -i 's/\("onboardingComplete":\) true/\1 false/; s/\("onboardingStep":\) 0/\1 2/' "$configuration"
end "$sound_server_id"
open_wizard
# They are there as well, for the server.
open_window '^Quietlark$'
# The wizard opens at the same time: the program itself has to say which has the keyboard.
waits_for_keyboard 'push button' Approve
key ctrl+w
wait_until 30 preferences_are_gone || fail 'Preferences do not close.'

opens '^pavucontrol' clicks 'push button' 'Grant: Microphone'
start_microphone
waits_for_keyboard 'push button' Next
key Return
is_at 3
key Return

is_at 4
sees label 'Approve the server'
opens '^xdg-open file://.*#login-items$' clicks 'push button' 'Open Settings'
systemctl_does unmask "$service"
sees label "You're all set!" 120
clicks 'push button' Finish
dictates_elsewhere 'open the door'

# Stopped as well as forbidden, it is still enabled when it is allowed again.
systemctl_does mask --now "$service"
sees label 'Awaiting approval'
opens '^xdg-open file://.*#login-items$' clicks 'push button' Approve
systemctl_does unmask "$service"
sees label 'Ready to transcribe' 120
wait_until 30 server_runs || fail 'The server does not run.'
