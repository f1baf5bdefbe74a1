#!/usr/bin/env bash
# installed.sh BIN user|package [itself]: Quietlark is installed, by one's own hand or by the package
# manager, for an ordinary user whose home directory is empty; dictates by way of the speech server
# that systemd runs for it, and is removed in the same way, or by itself. Then there is nothing left of
# it, or, where only the package manager was asked, nothing but the user's own.
# shellcheck source=apart.sh
. "$(dirname "${BASH_SOURCE[0]}")/apart.sh"
# shellcheck source=support.sh
. "$root/tests/end_to_end/support.sh"
# shellcheck source=../installation/service_manager.sh
. "$root/tests/installation/service_manager.sh"

kind=$2
remover=${3:-$kind}
service=net.quietlark.server.service
# The desktop's programs have a home of their own, so that this one holds nothing but Quietlark's.
owner="$desktop/owner"
user=1000
home="$owner/home"
let_owner_in() {
    chmod a+x "$desktop" "$XDG_RUNTIME_DIR" "$XDG_RUNTIME_DIR/pulse"
    # Everybody who hears anything has one, and it is no trace of Quietlark's.
    cp "$HOME/.config/pulse/cookie" "$desktop/cookie" 2>/dev/null ||
        head -c 256 /dev/zero >"$desktop/cookie"
    chmod a+r "$desktop/cookie"
    # Where an installation builds, and notes what it has done.
    find "$root/build" "$(dirname "$bin")" -maxdepth 1 -exec chown "$user" {} +
}
let_owner_in

trap 'end_service_manager; close_virtual_desktop' EXIT
start_service_manager "$owner" "$user"

before_failing() {
    show_logs
    beside_manager "systemctl --user --no-pager status $service" || true
    tail -n 20 "$owner.err" >&2
}

# As in a terminal of the owner's.
as_owner=(setpriv --reuid="$user" --regid="$user" --clear-groups
    env -u QUIETLARK_ENDPOINT_FILE -u XDG_CONFIG_HOME -u XDG_DATA_HOME -u XDG_CACHE_HOME
    -u XDG_STATE_HOME HOME="$home" PATH="$home/.local/bin:$PATH" XDG_RUNTIME_DIR="$owner/run"
    DBUS_SESSION_BUS_ADDRESS="unix:path=$owner/run/bus" PULSE_COOKIE="$desktop/cookie")

# What the home directory holds, and what is elsewhere that was not, or was and is not any more, but for
# the package manager's own.
listing() {
    (cd "$home" && find . -printf '%y %p %l\n' | sort)
    (cd /mnt/upper && find . -mindepth 1 -path ./var/lib/dpkg -prune -o -printf '%y %p\n') | while read -r type path; do
        if [ "$type" = c ]; then
            echo "missing $path"
        elif [ ! -e "/mnt/lower/$path" ] && [ ! -L "/mnt/lower/$path" ]; then
            echo "new $path"
        fi
    done | sort
}

install_it() {
    if [ "$kind" = user ]; then
        beside_manager "bash $root/scripts/install"
    else
        dpkg --install "$package"
        beside_manager 'systemctl --user daemon-reload'
    fi
}

remove_it() {
    if [ "$kind" = user ]; then
        rm -r "$home/.config/Quietlark" "$home/.local/share/Quietlark"
        # From where the one that runs is seen, which the manager's processes do not see. Over the bus:
        # the manager's own socket drops those who come from another namespace.
        "${as_owner[@]}" XDG_RUNTIME_DIR="$desktop/run" bash "$root/scripts/install" --remove
    else
        dpkg --remove quietlark
    fi
}

# By the button of its settings, and the answer to its question.
remove_by_itself() {
    # From the tabs to the switch for starting at login, and on to the button.
    xdotool windowactivate --sync "$(preferences_are_open | tail -n 1)" key Tab space
    wait_until 30 test -e "$home/.config/autostart/net.quietlark.app.desktop" ||
        fail 'It would not start at login.'
    xdotool key Tab space
    wait_until 30 is_open '^Uninstall Quietlark\?' || fail 'It did not ask.'
    # From "Cancel" to the other one.
    xdotool windowactivate --sync "$(is_open '^Uninstall Quietlark\?')" key Tab space
    if [ "$kind" = package ]; then
        leave_the_program_to_the_package_manager
    else
        wait_until 60 has_ended "$quietlark_id" || fail 'It did not end.'
        rm -r "$home/.local/share/Trash/files/Quietlark/bin" || fail 'It is not in the Trash.'
        rm -r "$home/.local/share/Trash"
        (cd "$home" && rmdir --parents .local/share) || fail 'There is more than the Trash.'
    fi
}

leave_the_program_to_the_package_manager() {
    local alert="^Couldn't move Quietlark to the Trash"
    wait_until 60 is_open "$alert" || fail 'It did not say that the package is still there.'
    xdotool windowactivate --sync "$(is_open "$alert")" key Return
    wait_until 60 has_ended "$quietlark_id" || fail 'It did not end.'
    [ ! -e "$home/.local/share/Trash" ] || fail 'There is something in the Trash.'
    dpkg --remove quietlark
}

is_open() {
    xdotool search --onlyvisible --name "$1"
}

preferences_are_open() {
    xdotool search --onlyvisible --name '^Quietlark( Preferences)?$'
}

# processes_of PROGRAM: their ids.
processes_of() {
    local process
    for process in /proc/[0-9]*; do
        [ "$(readlink "$process/exe")" != "$1" ] || printf '%s\n' "${process#/proc/}"
    done
}

# What the programs have loaded by now, plugins included, comes with the package, on a computer where
# nothing is installed that is only recommended.
check_dependencies() {
    local process files missing qt_does_without='libxcursor1|libxrender1'
    files=$(for process in $(processes_of /usr/bin/quietlark) $(processes_of /usr/bin/quietlark-server); do
        # The names of computers are looked up as this computer's administrator wants it.
        awk '$6 ~ /\.so/ && $6 !~ /libnss_/ { print $6; sub("^/usr", "", $6); print $6 }' "/proc/$process/maps"
    done | sort -u)
    # Of the names of a file, as there are links between /lib and /usr/lib, one is known.
    # shellcheck disable=SC2086
    missing=$({ dpkg-query --search $files 2>/dev/null || true; } | sed 's/[:,].*//' | sort -u |
        grep -vxF -f <(required_packages) | grep -vxE "$qt_does_without" || true)
    expect 'what it uses of other packages' '' "$missing"
}

required_packages() {
    apt-cache -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache= depends --recurse --installed \
        --no-recommends --no-suggests --no-conflicts --no-breaks --no-replaces --no-enhances \
        quietlark | grep -oE '^[a-z0-9][^ :]*' | sort -u
}

if [ "$kind" = package ]; then
    package=$(echo "$root/dist/quietlark_$("$bin/quietlark" --version | cut -d ' ' -f 2)"_*.deb)
    # Nobody looks anything up in here, and the index of manual pages takes its time.
    rm -f /var/lib/man-db/auto-update
fi
listing >"$desktop/before"
install_it || fail 'It could not be installed.'

start_quietlark_of_owner() {
    start quietlark "${as_owner[@]}" quietlark
    quietlark_id=$started_id
    wait_for_line 60 "$quietlark_id" "$logs/quietlark.out" '^ready' || fail 'Quietlark did not start.'
}

# What its windows ask for at the first start is answered; whisper.cpp is not here, so the file that
# would be its model only has to be there.
start_quietlark_of_owner
end "$quietlark_id"
XDG_CONFIG_HOME="$home/.config" write_configuration
mkdir -p "$home/.local/share/Quietlark/models"
: >"$home/.local/share/Quietlark/models/active.bin"
chown -R "$user:$user" "$home/.config" "$home/.local"
start_quietlark_of_owner
wait_until 60 test -s /tmp/quietlark.endpoint || fail 'The speech server did not start.'
beside_manager "systemctl --user is-enabled $service" || fail 'The service is not enabled.'

document="$desktop/letter.txt"
open_mousepad "$document"
say_holding_hotkey 'open the door'
expect 'the text' 'open the door' "$(text_of_editor "$document")"

# From the menu, where it runs already: it shows its settings. Looked up as menus do, by its name.
"${as_owner[@]}" /usr/bin/python3 - <<'PYTHON' || fail 'It cannot be started from the menu.'
from gi.repository import Gio
raise SystemExit(not Gio.DesktopAppInfo.new("net.quietlark.app.desktop").launch())
PYTHON
wait_until 30 preferences_are_open || fail 'It did not open its window.'
# The program has the icon within too, so its window does not tell whether menus find it.
[ "$kind" = user ] && menu="$home/.local/share" || menu=/usr/share
icon=$(sed -n 's/^Icon=//p' "$menu/applications/net.quietlark.app.desktop")
for size in scalable 48x48; do
    file=$(find -L "$menu/icons/hicolor/$size/apps" -type f -name "$icon.*" -size +0)
    [ -n "$file" ] || fail "There is no icon $icon of the size $size."
done

[ "$remover" != package ] || check_dependencies
if [ "$remover" = itself ]; then
    remove_by_itself
else
    # The installer asks the one that runs to end.
    [ "$kind" = user ] || end "$quietlark_id"
    remove_it || fail 'It could not be removed.'
    has_ended "$quietlark_id" || fail 'It still runs.'
fi
listing >"$desktop/after"
left=$(diff "$desktop/before" "$desktop/after" || true)
if [ "$remover" = package ]; then
    # The user's part is the user's to remove.
    left=$(grep '^[<>]' <<<"$left" |
        grep -vE '^> . \./\.(config(/(Quietlark|systemd).*)?|local(/share(/Quietlark.*)?)?) ' || true)
else
    [ ! -e /tmp/quietlark.endpoint ] || fail 'The speech server is still there.'
fi
expect 'what is left of it' '' "$left"
