#!/usr/bin/env bash
# The speech server as the service of an ordinary user's systemd: it transcribes, and sees nothing of
# the home directory but the models and the programs.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"
# shellcheck source=../../scripts/lib/virtual_microphone.sh
. "$root/scripts/lib/virtual_microphone.sh"
# shellcheck source=../../scripts/lib/virtual_desktop.sh
. "$root/scripts/lib/virtual_desktop.sh"
# shellcheck source=service_manager.sh
. "$root/tests/installation/service_manager.sh"

unit=net.quietlark.server.service
user=1000
directory="$scratch/user"
home="$directory/home"
bundle="$home/.local/opt/Quietlark"
endpoint="$directory/endpoint"

# As it is installed, with something to find in the home directory.
mkdir -p "$home/.config/Quietlark" "$home/.config/systemd/user/$unit.d" \
    "$home/.local/share/systemd/user" "$home/.local/share/Quietlark/models" \
    "$home/.local/share/mail"
install_into "$bundle"
ln -s "$bundle/lib/systemd/user/$unit" "$home/.local/share/systemd/user/$unit"
echo secret | tee "$home/diary" "$home/.config/diary" >"$home/.local/share/mail/diary"
echo 'no model' >"$home/.local/share/Quietlark/models/active.bin"

# What is within its reach, asked in its sandbox just before it starts.
cat >"$directory/look.sh" <<'SH'
exec >"$1/seen" 2>&1
cd "$HOME" && find . -path ./.local/opt/Quietlark -prune -o -print | sort | xargs echo home:
echo "model: $(cat .local/share/Quietlark/models/active.bin)"
for path in "$HOME/new" .local/share/Quietlark/models/new .local/opt/Quietlark/bin/new /var/tmp/new; do
    (: >"$path") 2>/dev/null && echo "could write $path"
done
ls /tmp/.X11-unix/ /tmp/.ICE-unix/ 2>/dev/null | xargs echo desktop:
ls /home /root | xargs echo others:
ls /dev | grep -E '^(sd|vd|dri|input|snd|video|mem|kvm)' | xargs echo devices:
grep -E '^(NoNewPrivs|CapBnd|Seccomp):' /proc/self/status | xargs echo
SH
printf '%s\n' '[Service]' "ExecStartPre=/bin/sh $directory/look.sh $directory" \
    "StandardError=append:$directory/server.err" >"$home/.config/systemd/user/$unit.d/look.conf"
chown -R "$user:$user" "$directory" 2>/dev/null || true
chmod 755 "$scratch"

# As beside a desktop. The folders stay: another one may be about to use them.
sockets=()
for folder in /tmp/.X11-unix /tmp/.ICE-unix; do
    [ -d "$folder" ] || mkdir -m 1777 "$folder"
    sockets+=("$(mktemp "$folder/quietlark.XXXXXX")")
done

at_end() {
    end_service_manager
    end_all
    rm -f "${sockets[@]}"
}
start_service_manager "$directory" "$user"

before_failing() {
    beside_manager "systemctl --user --no-pager status $unit" || true
    cat "$directory.err" "$directory/server.err" >&2
}

# start_with SETTING...: sets $address.
start_with() {
    printf '%s\n' "QUIETLARK_ENDPOINT_FILE=$endpoint" "$@" >"$home/.config/Quietlark/server.conf"
    beside_manager "systemctl --user restart $unit" || fail "The service did not start with: $*"
    wait_until 60 test -s "$endpoint" || fail "The server did not say where it is with: $*"
    address=$(sed -n 's/^local=//p' "$endpoint")
}

start_with
expect 'what it sees' "home: . ./.local ./.local/opt ./.local/share ./.local/share/Quietlark \
./.local/share/Quietlark/models ./.local/share/Quietlark/models/active.bin
model: no model
desktop:
others: /home: /root:
devices:
CapBnd: 0000000000000000 NoNewPrivs: 1 Seccomp: 2" "$(cat "$directory/seen")"

# With PocketSphinx.
synthesise 'open the door' "$scratch/speech.wav"
expect 'the transcript' 'open the door' "$(curl -sS -F "file=@$scratch/speech.wav" \
    -F response_format=text "http://$address/inference" | xargs)"

# With whisper.cpp's server where the user installs programs, or what stands in for it.
install -D --owner="$user" "$bin/whisper_stand_in" "$home/.local/bin/whisper-server"
start_with
curl -sS "http://$address/v1/models" | grep -q '"whisper-active"' || fail 'It does not use whisper.cpp.'
curl -sSf -F "file=@$scratch/speech.wav" "http://$address/inference" | grep -q '"text"' ||
    fail 'whisper.cpp does not transcribe.'

# On the local network.
desktop=$scratch logs=$scratch
DBUS_SYSTEM_BUS_ADDRESS="unix:path=$desktop/network/bus"
export DBUS_SYSTEM_BUS_ADDRESS
start_network
start_with QUIETLARK_SERVER_SHARE=yes "DBUS_SYSTEM_BUS_ADDRESS=$DBUS_SYSTEM_BUS_ADDRESS"
wait_until 30 grep -q 'announced as' "$directory/server.err" ||
    fail 'The network does not know of it.'

beside_manager "systemd-analyze --user security --threshold=50 --no-pager $unit" ||
    fail 'The service is less confined than 5.0.'
beside_manager "systemctl --user stop $unit" || fail 'The service did not stop.'
[ ! -e "$endpoint" ] || fail 'The endpoint file is still there.'
