# shellcheck shell=bash
# A service manager of the user's, with the speech server among its units, takes the session bus's place
# in a test of the windows.
# shellcheck source=../installation/service_manager.sh
. "$root/tests/installation/service_manager.sh"

owner="$desktop/owner"
service=net.quietlark.server.service
units="$owner/home/.local/share/systemd/user"

start_manager_of_server() {
    mkdir -p "$units"
    cat >"$units/$service" <<UNIT
[Service]
Type=exec
Environment="QUIETLARK_ENDPOINT_FILE=$QUIETLARK_ENDPOINT_FILE"
ExecStart="$bin/quietlark-server"
[Install]
WantedBy=default.target
UNIT
    trap 'end_service_manager; close_virtual_desktop' EXIT
    start_service_manager "$owner" 0
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$owner/run/bus"
}
