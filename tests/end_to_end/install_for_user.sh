#!/usr/bin/env bash
# scripts/install replaces and removes nothing but what is its own.
# shellcheck source=../installation/support.sh
. "$(dirname "$0")/../installation/support.sh"

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
    env -u XDG_CONFIG_HOME -u XDG_DATA_HOME HOME="$home" XDG_RUNTIME_DIR=/nonexistent \
        DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent \
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
mkdir "$units/default.target.wants"
for link in "$units/$service" "$units/default.target.wants/$service"; do
    ln -s "$bundle/lib/systemd/user/$service" "$link"
done
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

for other in "mkdir -p $bundle/precious" "ln -s /usr $bundle"; do
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
