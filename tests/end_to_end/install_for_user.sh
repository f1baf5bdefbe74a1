#!/usr/bin/env bash
# scripts/install replaces and removes nothing but what is its own.
# shellcheck source=../installation/support.sh
. "$(dirname "$0")/../installation/support.sh"
# shellcheck source=../../scripts/lib/virtual_desktop.sh
. "$root/scripts/lib/virtual_desktop.sh"

at_end() { end_all; }
home="$scratch/home"
bundle="$home/.local/opt/Quietlark"
service=net.quietlark.server.service

# A home directory with something in it, and nobody's service manager.
begin() {
    rm -rf "$home"
    mkdir -p "$home/.config/autostart" "$home/.local/share/icons"
    echo mine >"$home/.config/autostart/another.desktop"
    listing >"$scratch/before"
}

install_script() {
    install_with HOME="$home" -- "$@"
}

# install_with [VARIABLE=VALUE...] -- [OPTION]
install_with() {
    local variables=()
    while [ "$1" != -- ]; do
        variables+=("$1")
        shift
    done
    shift
    env -u HOME -u XDG_CONFIG_HOME -u XDG_DATA_HOME XDG_RUNTIME_DIR=/nonexistent \
        DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent "${variables[@]}" \
        bash "$root/scripts/install" "$@" 2>"$scratch/err"
}

listing() {
    (cd "$home" && find . -type l -printf 'l %p -> %l\n' -o -printf '%y %p\n' | sort)
}

# is_as_before [EXCEPTION]: but for what is named.
is_as_before() {
    expect 'what is in the home directory' "${1:-}" \
        "$(listing | diff "$scratch/before" - | grep '^[<>]' | cut -c 5- || true)"
}

refuses() {
    ! install_script || fail 'It was installed nevertheless.'
    grep -qF "$1 is there already" "$scratch/err" || fail "It says: $(cat "$scratch/err")"
}

begin
install_script || fail "It could not be installed: $(cat "$scratch/err")"
expect 'links that lead nowhere' '' "$(find -L "$home" -type l)"
expect 'files beside the links' './.config/autostart/another.desktop' \
    "$(cd "$home" && find . -path ./.local/opt -prune -o -type f -print)"
"$home/.local/bin/quietlark" --version >/dev/null || fail 'It is not on the path.'
install_script || fail "It could not be installed again: $(cat "$scratch/err")"
printf '[Desktop Entry]\nExec="%s/bin/quietlark"\n' "$bundle" \
    >"$home/.config/autostart/net.quietlark.app.desktop"
# As systemd has it for a service that is enabled.
units="$home/.config/systemd/user"
mkdir -p "$units/default.target.wants"
for link in "$units/$service" "$units/default.target.wants/$service"; do
    ln -s "$bundle/lib/systemd/user/$service" "$link"
done
install_script --remove || fail "It could not be removed: $(cat "$scratch/err")"
is_as_before

# The one that runs is not left behind without its files, nor where no removal finds it.
begin
install_script || fail "It could not be installed: $(cat "$scratch/err")"
desktop=$scratch logs=$scratch
start_screen
mkdir "$scratch/elsewhere"
start quietlark env -u WAYLAND_DISPLAY HOME="$scratch/elsewhere" XDG_RUNTIME_DIR=/nonexistent \
    DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent PULSE_SERVER=unix:/nonexistent \
    QT_QPA_PLATFORM=xcb QUIETLARK_ENDPOINT_FILE="$scratch/endpoint" \
    QUIETLARK_MODEL_URL=http://127.0.0.1:9/ "$bundle/bin/quietlark"
quietlark_id=$started_id
running_from_bundle() {
    [ "$(readlink "/proc/$quietlark_id/exe")" = "$bundle/bin/quietlark" ]
}
wait_until 10 running_from_bundle || fail "It does not run: $(cat "$scratch/quietlark.err")"
install_script || fail "It could not be installed again: $(cat "$scratch/err")"
grep -q 'Ending Quietlark' "$scratch/err" || fail 'It does not say that it ends the one that runs.'
has_ended "$quietlark_id" || fail 'The old one still runs.'
install_script --remove || fail "It could not be removed: $(cat "$scratch/err")"
is_as_before

# A removal that was cut short can be done again.
begin
install_script || fail "It could not be installed: $(cat "$scratch/err")"
mkdir "$scratch/bin"
# shellcheck disable=SC2016
printf '#!/bin/sh\n/bin/rm "$@"\nkill -TERM "$PPID"\n' >"$scratch/bin/rm"
chmod +x "$scratch/bin/rm"
! install_with HOME="$home" PATH="$scratch/bin:$PATH" -- --remove || fail 'It was not cut short.'
install_script --remove || fail "It could not be removed: $(cat "$scratch/err")"
is_as_before

# What others have put into our folders, and made of our links, stays.
begin
install_script || fail "It could not be installed: $(cat "$scratch/err")"
ln -sfn /elsewhere "$home/.local/bin/quietlark"
: >"$home/.local/share/man/man1/another.1"
install_script --remove || fail "It could not be removed: $(cat "$scratch/err")"
is_as_before './.local/bin
./.local/share/man
./.local/share/man/man1
./.local/share/man/man1/another.1
./.local/bin/quietlark -> /elsewhere'

begin
mkdir "$home/.local/bin"
echo mine >"$home/.local/bin/quietlark"
listing >"$scratch/before"
refuses "$home/.local/bin/quietlark"
is_as_before

# The folder is ours only with the program in it, and nothing besides.
install_like() {
    mkdir -p "$bundle/bin" "$bundle/share/applications"
    : >"$bundle/bin/quietlark"
    : >"$bundle/share/applications/net.quietlark.app.desktop"
}
with_notes() { install_like && mkdir "$bundle/notes"; }
with_folder_for_program() { install_like && rm "$bundle/bin/quietlark" && mkdir "$bundle/bin/quietlark"; }
with_link_for_program() { install_like && ln -sf /bin/true "$bundle/bin/quietlark"; }
without_menu_entry() { install_like && rm -r "$bundle/share"; }
of_somebody_else() { install_like && chown 1234 "$bundle"; }

others=("mkdir -p $bundle/precious" "ln -s /usr $bundle" with_notes with_folder_for_program
    with_link_for_program without_menu_entry)
[ "$(id -u)" != 0 ] || others+=(of_somebody_else)
for other in "${others[@]}"; do
    begin
    mkdir "$home/.local/opt"
    $other
    listing >"$scratch/before"
    refuses "$bundle"
    ! install_script --remove || fail "It was taken for ours: $other"
    is_as_before
done

begin
! install_script --remove || fail 'What is not installed was removed.'
is_as_before

# Paths are compared as they are written.
begin
install_with HOME="$home//" XDG_DATA_HOME=data XDG_CONFIG_HOME=config -- ||
    fail "It could not be installed: $(cat "$scratch/err")"
[ ! -e data ] || fail 'A relative directory was obeyed.'
install_script --remove || fail "It could not be removed: $(cat "$scratch/err")"
is_as_before

# says SENTENCE [VARIABLE=VALUE...]
says() {
    local option
    for option in '' --remove; do
        ! install_with "${@:2}" -- ${option:+"$option"} || fail "It did not object to: ${*:2}"
        expect "what it says to ${*:2}" "install: $1" "$(cat "$scratch/err")"
    done
}

begin
nowhere='HOME does not say where your home directory is.'
says "$nowhere"
says "$nowhere" HOME=
says "$nowhere" HOME=home
says "$home/none, which HOME names, is not a home directory of yours." HOME="$home/none"
if [ "$(id -u)" = 0 ]; then
    chown 1234 "$home"
    says "$home, which HOME names, is not a home directory of yours." HOME="$home"
    chown 0 "$home"
fi
is_as_before

# What is mounted in it, be it from within the same file system, is not ours.
if [ "$(id -u)" = 0 ] && unshare --mount true 2>/dev/null; then
    begin
    install_like
    mkdir "$bundle/share/disk" "$home/photos"
    : >"$home/photos/precious"
    listing >"$scratch/before"
    export -f install_script install_with
    export home root scratch bundle
    unshare --mount bash -euc 'mount --bind "$home/photos" "$bundle/share/disk"
        ! install_script || exit 1
        ! install_script --remove' || fail 'It was taken for ours with a mount in it.'
    grep -qF "$bundle is there already" "$scratch/err" || fail "It says: $(cat "$scratch/err")"
    is_as_before
else
    echo 'Mounts were not tested: only root can mount.'
fi
