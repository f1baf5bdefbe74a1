# shellcheck shell=bash
# Installs what the lists in scripts/packages name. A line of a list is: package kind:name, where
# kind:name says how to recognise the same thing on a distribution with other package names.

package_lists="$root/scripts/packages"

# The lines of the named lists, without comments.
package_lines() {
    local list
    for list in "$@"; do
        sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$package_lists/$list.txt"
    done
}

# What says which distribution this is; another path lets a test pretend.
os_release=${QUIETLARK_OS_RELEASE:-/etc/os-release}

is_debian_12() {
    [ -r "$os_release" ] || return 1
    (
        # shellcheck source=/dev/null
        . "$os_release"
        [ "${ID:-}" = debian ] && [ "${VERSION_ID:-}" = 12 ]
    )
}

missing_packages() {
    local wanted installed
    wanted=$(package_lines "$@" | awk '{ print $1 }' | sort -u)
    # It fails where one of them was never installed, and names the others all the same.
    # shellcheck disable=SC2086 # one word for each package
    installed=$({ dpkg-query -W -f '${Package} ${db:Status-Status}\n' $wanted 2>/dev/null || true; } |
        awk '$2 == "installed" { print $1 }' | sort -u)
    comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$installed")
}

is_present() {
    local name=${1#*:}
    case ${1%%:*} in
        command) command -v "$name" >/dev/null ;;
        library) pkg-config --exists "$name" 2>/dev/null ;;
        header) printf '#include <%s>\n' "$name" | c++ -x c++ -fsyntax-only - 2>/dev/null ;;
        file) [ -e "$name" ] ;;
    esac
}

require_root_for_packages() {
    [ "$(id -u)" = 0 ] || command -v sudo >/dev/null || fail "Installing packages needs root," \
        "and there is no sudo. As root, run: apt-get install --no-remove $*"
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# apt-get without questions, and without the three lines it has for unpacking each package.
apt() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Acquire::Retries=3 \
        -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 "$@" |
        sed -u -E '/^(Selecting|Preparing|Unpacking|\(Reading)/d' >&2
}

# What apt would take away to make room for the named packages, one a line.
removals_for() {
    apt-get -s --no-install-recommends install "$@" 2>/dev/null | awk '$1 == "Remv" { print $2 }'
}

# install PACKAGE...: never at the cost of a package that is there.
install() {
    local removals
    removals=$(removals_for "$@") || true
    [ -z "$removals" ] || fail "Nothing was installed: to make room for $* apt would remove" \
        "${removals//$'\n'/ }, which you may need. A container or a virtual machine has room for both."
    apt install --no-install-recommends --no-remove "$@"
}

have_package_index() {
    compgen -G '/var/lib/apt/lists/*_Packages*' >/dev/null
}

# install_packages LIST...: returns at once when nothing is missing.
install_packages() {
    local missing
    if ! is_debian_12; then
        name_what_is_missing "$@"
        return
    fi
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0

    require_root_for_packages "${missing[@]}"
    say "Installing ${#missing[@]} packages: ${missing[*]}"
    have_package_index || apt update
    if ! install "${missing[@]}"; then
        say "Trying once more with a fresh package index"
        apt update
        install "${missing[@]}" || fail "These packages could not be installed: ${missing[*]}"
    fi
}

# tool_for KIND: the program that recognises things of this kind.
tool_for() {
    case $1 in
        library) echo pkg-config ;;
        header) echo c++ ;;
    esac
}

# Elsewhere the names of packages would be guesses: say which things are not there, and stop.
# Without the tool that recognises it, whether a thing is there is not known: then the tool is named
# alone.
name_what_is_missing() {
    local package thing tool missing=()
    while read -r package thing; do
        tool=$(tool_for "${thing%%:*}")
        [ -z "$tool" ] || command -v "$tool" >/dev/null || continue
        is_present "$thing" || missing+=("${thing/:/ } (Debian: $package)")
    done < <(package_lines "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    printf 'missing: %s\n' "${missing[@]}" >&2
    fail "This is not Debian 12. Please install the above with your distribution's tools."
}
