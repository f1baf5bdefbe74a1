#!/usr/bin/env bash
# installed_files.sh BIN CHECK: one check of what is installed.
# shellcheck source=support.sh
. "$(dirname "$0")/support.sh"

service=lib/systemd/user/net.quietlark.server.service
desktop_file=share/applications/net.quietlark.app.desktop

check_desktop_file() {
    install_into "$scratch/with spaces"
    expect 'what the validator says' '' "$(desktop-file-validate "$scratch/with spaces/$desktop_file")"
}

# By itself, and beside the desktop file and the icons that it names.
check_metainfo() {
    install_into "$scratch/usr"
    appstreamcli validate --strict --no-net \
        "$scratch/usr/share/metainfo/net.quietlark.app.metainfo.xml"
    appstreamcli validate-tree --strict --no-net "$scratch"
}

check_version() {
    local version
    install_into "$scratch/bundle"
    version=$("$bin/quietlark" --version)
    version=${version#quietlark }
    grep -q "<release version=\"$version\"" \
        "$scratch/bundle/share/metainfo/net.quietlark.app.metainfo.xml"
    expect "the package's version" "quietlark ($version)" \
        "$(head -n 1 "$root/packaging/debian/changelog" | cut -d ' ' -f 1-2)"
}

check_manuals() {
    install_into "$scratch/bundle"
    local page
    for page in "$scratch"/bundle/share/man/man1/*.1; do
        expect "what man says about $page" '' \
            "$(LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings=w -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)"
    done
    # No option is without an explanation.
    local option
    for option in $("$bin/quietlark-server" --help | grep -oE -- '--[a-z-]+' | sort -u); do
        grep -qF -- "${option//-/\\-}" "$scratch/bundle/share/man/man1/quietlark-server.1" ||
            fail "The manual does not explain $option."
    done
}

check_service() {
    install_into "$scratch/bundle"
    mkdir -m 700 "$scratch/run"
    expect 'what systemd says' '' "$(XDG_RUNTIME_DIR=$scratch/run systemd-analyze verify --user \
        --man=no --recursive-errors=no "$scratch/bundle/$service" 2>&1)"
    systemd-analyze security --offline=true --threshold=50 --no-pager "$scratch/bundle/$service"
}

# Moved elsewhere, reached through a link, and without what is in the build folder.
check_programs() {
    local program
    install_into "$scratch/bundle"
    mv "$scratch/bundle" "$scratch/elsewhere"
    for program in quietlark quietlark-server; do
        ln -s "$scratch/elsewhere/bin/$program" "$scratch/$program"
        "$scratch/$program" --version | grep -q "^$program " || fail "$program does not run."
        ! readelf --dynamic "$scratch/$program" | grep -E 'RPATH|RUNPATH' ||
            fail "$program looks for libraries of its own."
    done
}

check_names() {
    install_into "$scratch/with spaces"
    grep -qxF "ExecStart=\"$scratch/with spaces/bin/quietlark-server\"" "$scratch/with spaces/$service"
    grep -qxF "Exec=\"$scratch/with spaces/bin/quietlark\"" "$scratch/with spaces/$desktop_file"
    expect 'what is left to fill in' '' "$(grep -rIl '@[A-Z_]*@' "$scratch/with spaces" || true)"
}

check_odd_path() {
    local character
    for character in % '$' '"' \\; do
        ! install_into "$scratch/odd$character" 2>/dev/null || fail "It was installed in odd$character."
        grep -q 'cannot be installed' "$scratch/log" || fail "It did not say why."
    done
}

"check_$2"
