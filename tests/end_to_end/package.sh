#!/usr/bin/env bash
# scripts/package makes a package that lintian has nothing against, and says where it is.
# shellcheck source=../installation/support.sh
. "$(dirname "$0")/../installation/support.sh"

before_failing() {
    tail -n 40 "$scratch/err" >&2
}

package=$(bash "$root/scripts/package" 2>"$scratch/err") || fail 'There is no package.'
expect 'the package' quietlark "$(dpkg-deb --field "$package" Package)"
expect 'the version' "$("$bin/quietlark" --version)" \
    "quietlark $(dpkg-deb --field "$package" Version)"
expect 'its scripts' '' "$(dpkg-deb --ctrl-tarfile "$package" | tar -t | grep -E '(pre|post)' || true)"
