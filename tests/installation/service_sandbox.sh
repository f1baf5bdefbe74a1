#!/usr/bin/env bash
# The speech server as the service of an ordinary user's systemd: it transcribes, and sees nothing of
# the home directory but the models and the programs.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"
# shellcheck source=../../scripts/lib/virtual_microphone.sh
. "$root/scripts/lib/virtual_microphone.sh"
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
echo "QUIETLARK_ENDPOINT_FILE=$endpoint" >"$home/.config/Quietlark/server.conf"

# What is within its reach, asked in its sandbox just before it starts.
cat >"$directory/look.sh" <<'SH'
exec >"$1/seen" 2>&1
cd "$HOME" && find . -path ./.local/opt/Quietlark -prune -o -print | sort | xargs echo home:
echo "model: $(cat .local/share/Quietlark/models/active.bin)"
for path in "$HOME/new" .local/share/Quietlark/models/new .local/opt/Quietlark/bin/new /var/tmp/new; do
    (: >"$path") 2>/dev/null && echo "could write $path"
done
ls /home /root | xargs echo others:
ls /dev | grep -E '^(sd|vd|dri|input|snd|video|mem|kvm)' | xargs echo devices:
grep -E '^(NoNewPrivs|CapBnd|Seccomp):' /proc/self/status | xargs echo
SH
printf '[Service]\nExecStartPre=/bin/sh %s/look.sh %s\n' "$directory" "$directory" \
    >"$home/.config/systemd/user/$unit.d/look.conf"
chown -R "$user:$user" "$directory" 2>/dev/null || true
chmod 755 "$scratch"

at_end() {
    end_service_manager
}
start_service_manager "$directory" "$user"

before_failing() {
    beside_manager "systemctl --user --no-pager status $unit" || true
    cat "$directory.err" >&2
}

beside_manager "systemctl --user start $unit" || fail 'The service did not start.'
expect 'what it sees' "home: . ./.local ./.local/opt ./.local/share ./.local/share/Quietlark \
./.local/share/Quietlark/models ./.local/share/Quietlark/models/active.bin
model: no model
others: /home: /root:
devices:
CapBnd: 0000000000000000 NoNewPrivs: 1 Seccomp: 2" "$(cat "$directory/seen")"

wait_until 60 test -s "$endpoint" || fail 'The server did not say where it is.'
synthesise 'open the door' "$scratch/speech.wav"
address=$(sed -n 's/^local=//p' "$endpoint")
expect 'the transcript' 'open the door' "$(curl -sS -F "file=@$scratch/speech.wav" \
    -F response_format=text "http://$address/inference" | xargs)"

beside_manager "systemd-analyze --user security --threshold=50 --no-pager $unit" ||
    fail 'The service is less confined than 5.0.'
beside_manager "systemctl --user stop $unit" || fail 'The service did not stop.'
[ ! -e "$endpoint" ] || fail 'The endpoint file is still there.'
