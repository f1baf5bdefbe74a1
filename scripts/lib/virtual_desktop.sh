# shellcheck shell=bash
# A desktop of its own: screen, window manager, session bus and home folder, all private to this
# run. Programs started afterwards are on it and see nothing of the user's.

# Sets $desktop (a folder that close_virtual_desktop removes) and $logs, and exports the session.
open_virtual_desktop() {
    desktop=$(mktemp -d -t quietlark.XXXXXX)
    logs="$desktop/logs"
    mkdir "$logs" "$desktop/home"
    mkdir -m 700 "$desktop/run"
    export_private_session
    start_screen
    start_session_bus
    start_network
    start_window_manager
}

close_virtual_desktop() {
    end_all
    [ -z "${desktop:-}" ] || rm -rf "$desktop"
}

export_private_session() {
    export HOME="$desktop/home" XDG_RUNTIME_DIR="$desktop/run"
    export XDG_CONFIG_HOME="$HOME/.config" XDG_DATA_HOME="$HOME/.local/share"
    export XDG_CACHE_HOME="$HOME/.cache" XDG_STATE_HOME="$HOME/.local/state"
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$XDG_RUNTIME_DIR/bus"
    export PULSE_SERVER="unix:$XDG_RUNTIME_DIR/pulse/native"
    export QUIETLARK_ENDPOINT_FILE="$desktop/quietlark.endpoint"
    # Nothing here fetches the speech model, nor meets the servers on the user's network.
    export QUIETLARK_MODEL_URL="http://127.0.0.1:9/"
    export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$desktop/network/bus"
    export LC_ALL=C.UTF-8 GDK_BACKEND=x11 QT_QPA_PLATFORM=xcb
    export GSETTINGS_BACKEND=memory NO_AT_BRIDGE=1
    unset WAYLAND_DISPLAY XDG_SESSION_TYPE XDG_CURRENT_DESKTOP XAUTHORITY SESSION_MANAGER
    unset PULSE_COOKIE PULSE_SINK PULSE_SOURCE PULSE_RUNTIME_PATH
    unset PIPEWIRE_REMOTE PIPEWIRE_RUNTIME_DIR
}

start_screen() {
    local number="$desktop/display"
    start screen sh -c 'exec Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -noreset 3>"$0"' \
        "$number"
    wait_until 30 grep -q . "$number" || fail "The virtual screen (Xvfb) did not start."
    DISPLAY=":$(cat "$number")"
    export DISPLAY
}

start_session_bus() {
    start bus dbus-daemon --session --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS"
    wait_until 30 test -S "$XDG_RUNTIME_DIR/bus" || fail "The session bus did not start."
}

avahi_answers() {
    dbus-send --bus="$DBUS_SYSTEM_BUS_ADDRESS" --print-reply --dest=org.freedesktop.Avahi / \
        org.freedesktop.Avahi.Server.GetVersionString
}

# A local network of this desktop's own, with nobody else on it. It takes namespaces, which only
# root has on most machines; without it Quietlark reports that it sees no network, and $network_id
# is empty.
network_id=
start_network() {
    unshare --net --mount --pid --fork true 2>/dev/null || return 0
    mkdir -p "$desktop/network"
    rm -f "$desktop/network/bus"
    cat >"$desktop/network/bus.conf" <<XML
<busconfig>
  <listen>unix:path=$desktop/network/bus</listen>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
XML
    printf '[server]\nhost-name=virtual-desktop\nuse-ipv6=no\nallow-interfaces=lo\n' \
        >"$desktop/network/avahi.conf"
    # shellcheck disable=SC2016
    start network unshare --net --mount --propagation private --pid --fork --kill-child \
        --mount-proc bash -c '
            mount -t tmpfs tmpfs /run && mkdir /run/avahi-daemon && ip link set lo up
            dbus-daemon --config-file="$0/bus.conf" --nofork --nopidfile &
            until [ -S "$0/bus" ]; do sleep 0.01; done
            exec avahi-daemon -f "$0/avahi.conf" --no-drop-root --no-chroot --no-rlimits
        ' "$desktop/network"
    network_id=$started_id
    wait_until 30 avahi_answers || fail "The virtual network (avahi-daemon) did not start."
}

window_manager_is_there() {
    xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'
}

# The window manager must leave the hotkeys alone: by default it has uses of its own for them.
start_window_manager() {
    mkdir -p "$HOME/.icewm"
    printf '%s=""\n' KeySysAddressBar KeySysShowDesktop >"$HOME/.icewm/preferences"
    : >"$HOME/.icewm/keys"
    start window_manager icewm
    window_manager_id=$started_id
    wait_until 30 window_manager_is_there || fail "The window manager (icewm) did not start."
}

# take_screenshot FILE
take_screenshot() {
    mkdir -p "$(dirname "$1")"
    scrot --overwrite "$1"
}

clipboard() {
    timeout 5 xclip -selection clipboard -out 2>/dev/null
}

clipboard_holds() {
    [ "$(clipboard)" = "$1" ]
}

put_on_clipboard() {
    start clipboard_owner sh -c 'printf %s "$0" | exec xclip -selection clipboard -in -quiet' "$1"
    wait_until 30 clipboard_holds "$1" || fail "The clipboard could not be filled."
}
