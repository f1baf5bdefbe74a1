# shellcheck shell=bash
# Quietlark as installed for one user: a folder of its own, $bundle, and links into it. The bundle
# knows what was made outside of it, so that whoever removes it leaves nothing behind.

application=net.quietlark.app
program=bin/quietlark
menu_entry=share/applications/$application.desktop
service=net.quietlark.server.service
registered=share/quietlark/registered

# Sets $home, $data_home, $config_home and $bundle, all without slashes to spare, as paths are
# compared as they are written.
find_places() {
    [[ ${HOME:-} = /* ]] || fail "HOME does not say where your home directory is."
    if [ ! -d "$HOME" ] || [ ! -O "$HOME" ]; then
        fail "$HOME, which HOME names, is not a home directory of yours."
    fi
    home=$(realpath -sm -- "$HOME")
    home=${home%/}
    data_home=$(base_directory "${XDG_DATA_HOME:-}" .local/share)
    config_home=$(base_directory "${XDG_CONFIG_HOME:-}" .config)
    bundle="$home/.local/opt/Quietlark"
}

# base_directory VALUE DEFAULT: what is not absolute counts as not set.
base_directory() {
    [[ $1 = /* ]] || set -- "$home/$2"
    realpath -sm -- "$1"
}

# What is there and not the program alone is somebody's.
require_own_bundle() {
    if [ -e "$bundle" ] || [ -L "$bundle" ]; then
        is_own_bundle || fail "$bundle is there already, and is not an installation of Quietlark."
    fi
}

is_own_bundle() {
    local part
    [ -d "$bundle" ] && [ ! -L "$bundle" ] && [ -O "$bundle" ] || return 1
    for part in "$program" "$menu_entry"; do
        [ -f "$bundle/$part" ] && [ ! -L "$bundle/$part" ] || return 1
    done
    [ -z "$(find "$bundle" -mindepth 1 -maxdepth 1 ! -name bin ! -name lib ! -name share)" ] &&
        ! holds_mount "$bundle"
}

# holds_mount FOLDER: something is mounted on it or below, be it from within the same file system.
holds_mount() {
    local folder point
    folder=$(realpath -- "$1")
    while IFS= read -r point; do
        [[ $point/ != "$folder"/* ]] || return 0
    done < <(findmnt --list --noheadings --output TARGET)
    return 1
}

# links CONTENT: each link, and the part of the bundle that it leads to, for a bundle of this content.
# The service's is not among the user's configuration, where systemd would remove it when the service
# is disabled.
links() {
    local part
    for part in quietlark quietlark-server; do
        printf '%s\t%s\n' "$home/.local/bin/$part" "bin/$part"
    done
    (cd "$1/share" && printf '%s\n' applications/* metainfo/* icons/hicolor/*/apps/* man/man1/*) |
        while read -r part; do
            printf '%s\t%s\n' "$data_home/$part" "share/$part"
        done
    printf '%s\t%s\n' "$data_home/systemd/user/$service" "lib/systemd/user/$service"
}

leads_into_bundle() {
    local target
    target=$(readlink -- "$1") && [[ $target = /* && $(realpath -sm -- "$target") = "$bundle"/* ]]
}

# What is not ours stays, and then there is no place for a link of ours.
require_room_for_links() {
    local link
    while IFS=$'\t' read -r link _; do
        { [ ! -e "$link" ] && [ ! -L "$link" ]; } || leads_into_bundle "$link" ||
            fail "$link is there already, and is not ours to replace."
    done < <(links "$1")
}

# The new bundle takes the place of the old one in a moment, and what the old one knew is passed on.
install_bundle() {
    local folder new
    folder=$(dirname "$bundle")
    made=$(mkdir_noting "$folder")
    staged=$(mktemp -d "$folder/.Quietlark.XXXXXX")
    new="$staged/new$bundle"
    DESTDIR="$staged/new" cmake --install "$root/build/release" --strip --prefix "$bundle" \
        >/dev/null || fail "Quietlark could not be installed."
    require_room_for_links "$new"
    if [ -e "$bundle/$registered" ]; then
        cp "$bundle/$registered" "$new/$registered"
    else
        printf '%s' "${made:+$made$'\n'}" >"$new/$registered"
    fi
    # Building takes its time.
    require_own_bundle
    if [ -e "$bundle" ]; then
        end_program
        mv "$bundle" "$staged/old"
    fi
    mv "$new" "$bundle"
}

# Undoes what an installation that did not come to its end has left half done.
clear_stage() {
    [ -n "${staged:-}" ] || return 0
    [ -e "$bundle" ] || [ ! -e "$staged/old" ] || mv "$staged/old" "$bundle"
    rm -rf --one-file-system "$staged"
    [ -e "$bundle" ] || remove_made "$(tac <<<"$made")"
}

# note_missing FOLDER: prints it and those above it that are not there.
note_missing() {
    [ ! -d "$1" ] || return 0
    note_missing "$(dirname "$1")"
    printf '%s/\n' "$1"
}

# mkdir_noting FOLDER: makes it, and prints it and those above it that were not there.
mkdir_noting() {
    note_missing "$1"
    mkdir -p "$1"
}

register() {
    local link part
    while IFS=$'\t' read -r link part; do
        mkdir_noting "$(dirname "$link")" | remember
        ln -sfn "$bundle/$part" "$link"
        remember <<<"$link"
    done < <(links "$bundle")
    # Where systemd keeps the links of a service that is enabled, and Quietlark what starts it at
    # login: they make the folders, and leave them there.
    note_missing "$config_home/systemd/user" | remember
    note_missing "$config_home/autostart" | remember
    tell_desktop
    # The speech server that runs is the one before.
    systemctl --user try-restart net.quietlark.server.service 2>/dev/null || true
}

# Adds the lines of standard input to the list, but none twice.
remember() {
    local line
    while IFS= read -r line; do
        grep -qxF "$line" "$bundle/$registered" || printf '%s\n' "$line" >>"$bundle/$registered"
    done
}

# Some desktops look for new files only when they are told, by a cache or by the folder's date.
tell_desktop() {
    touch "$data_home/icons/hicolor" 2>/dev/null || true
    systemctl --user daemon-reload 2>/dev/null || true
}

# What was made last goes first; the list of it, and what tells a bundle of ours, after the links, so
# that a removal that was cut short can be done again.
unregister() {
    local paths
    paths=$(tac "$bundle/$registered") || paths=
    remove_made "$(grep -v '/$' <<<"$paths")"
    # No more than a moment.
    trap '' INT TERM
    rm -rf --one-file-system "$bundle"
    remove_made "$(grep '/$' <<<"$paths")"
    systemctl --user daemon-reload 2>/dev/null || true
}

# remove_made PATHS: a link that leads elsewhere by now, and a folder in which there is something,
# are left alone.
remove_made() {
    local path
    while read -r path; do
        case $path in
            */) rmdir "$path" 2>/dev/null || true ;;
            *) ! leads_into_bundle "$path" || rm "$path" ;;
        esac
    done <<<"$1"
}

# Asks the ones that run from the bundle to end, as the desktop does at log-out.
end_program() {
    local ids attempt
    for attempt in {1..50}; do
        ids=$(running_programs)
        [ -n "$ids" ] || return 0
        if [ "$attempt" = 1 ]; then
            say "Ending Quietlark, which is running"
            # shellcheck disable=SC2086
            kill $ids 2>/dev/null || true
        fi
        sleep 0.2
    done
    fail "Quietlark is running, and does not end. Quit it, and try again."
}

# The ids of the processes.
running_programs() {
    local entry file
    file=$(realpath -- "$bundle/$program")
    for entry in /proc/[0-9]*; do
        [ ! -O "$entry" ] || [ "$(readlink "$entry/exe")" != "$file" ] ||
            printf '%s ' "${entry#/proc/}"
    done
}

# Also where no service manager answers, or it ignores a service that its user has masked.
stop_service() {
    local units="$config_home/systemd/user" link
    systemctl --user disable --now "$service" 2>/dev/null || true
    for link in "$units/$service" "$units/default.target.wants/$service"; do
        ! leads_into_bundle "$link" || rm "$link"
    done
    rmdir "$units/default.target.wants" 2>/dev/null || true
}

# Starting at login is the application's own setting, in a file that names its program.
forget_autostart() {
    local entry="$config_home/autostart/$application.desktop"
    ! grep -qF "Exec=\"$bundle/bin/quietlark\"" "$entry" 2>/dev/null || rm "$entry"
}
