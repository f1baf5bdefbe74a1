# shellcheck shell=bash
# Checks of the source itself.

tracked_files() {
    git -C "$root" ls-files -- "$@" | sed "s|^|$root/|"
}

code_is_formatted() {
    tracked_files '*.h' '*.cpp' | xargs -r clang-format --dry-run -Werror
}

scripts_are_sound() {
    tracked_files 'scripts/*' '*.sh' '.ci/*' | grep -v '\.txt$' | sort -u |
        (cd "$root" && xargs -r shellcheck -x)
}

# The rules in .clang-tidy, over the programs' sources as the release build compiles them. Says
# what it found; when it did not get as far as that, its last lines.
code_is_tidy() {
    local findings="$root/build/release/clang-tidy.txt"
    run-clang-tidy -quiet -p "$root/build/release" "^$root/(src|server)/" >"$findings" 2>&1 &&
        return
    sed -i 's/\x1b\[[0-9;]*m//g' "$findings"
    grep -A 5 'error:' "$findings" || tail -n 20 "$findings"
    return 1
}
