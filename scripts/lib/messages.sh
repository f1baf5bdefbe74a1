# shellcheck shell=bash
# What a script tells the person who runs it: progress and failures go to standard error, so that
# standard output holds results alone.

say() {
    printf '==> %s\n' "$*" >&2
}

# What a script may want to show before it fails.
before_failing() { :; }

# Ends the script with one clear sentence.
fail() {
    before_failing
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}
