#!/usr/bin/env bash
# What only the user can allow: the speech server, whose service is masked. The windows wait for it,
# show where to allow it, and go on by themselves.
# shellcheck source=window_support.sh
. "$(dirname "$0")/window_support.sh"
# shellcheck source=../installation/service_manager.sh
. "$root/tests/installation/service_manager.sh"

owner="$desktop/owner"
service=net.quietlark.server.service
units="$owner/home/.local/share/systemd/user"
mkdir -p "$units"
trap 'end_service_manager; close_virtual_desktop' EXIT
start_service_manager "$owner" 0
export DBUS_SESSION_BUS_ADDRESS="unix:path=$owner/run/bus"
cat >"$units/$service" <<UNIT
[Service]
Type=exec
Environment="QUIETLARK_ENDPOINT_FILE=$QUIETLARK_ENDPOINT_FILE"
ExecStart="$bin/quietlark-server"
[Install]
WantedBy=default.target
UNIT

before_failing() {
    show_logs
    beside_manager "systemctl --user --no-pager status $service" || true
    tail -n 20 "$owner.err" >&2
}

systemctl_does() {
    beside_manager "systemctl --user $*" || fail "This failed: systemctl --user $*"
}

server_runs() {
    beside_manager "systemctl --user is-active $service"
}

preferences_are_gone() {
    ! xdotool search --onlyvisible --name '^Quietlark$' >/dev/null
}

start_screen_reader
systemctl_does daemon-reload
systemctl_does mask "$service"
mkdir -p "$XDG_DATA_HOME/Quietlark/models"
: >"$XDG_DATA_HOME/Quietlark/models/active.bin"
write_configuration
sed -i 's/\("onboardingComplete":\) true/\1 false/; s/\("onboardingStep":\) 0/\1 4/' "$configuration"
open_wizard

sees label 'Approve the server'
systemctl_does unmask "$service"
sees label "You're all set!" 120
clicks 'push button' Finish
dictates_elsewhere 'open the door'

# Preferences have been there as well since the launch; now they come up by themselves.
open_window '^Quietlark$'
key ctrl+w
wait_until 30 preferences_are_gone || fail 'Preferences do not close.'
# Stopped as well as forbidden, it is still enabled when it is allowed again.
systemctl_does mask --now "$service"
sees label 'Awaiting approval'
systemctl_does unmask "$service"
sees label 'Ready to transcribe' 120
wait_until 30 server_runs || fail 'The server does not run.'
