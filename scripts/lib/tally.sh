# shellcheck shell=bash
# Counts what passed, failed and was skipped, and sums it up in one line.

passed=0
skipped=0
tests=0
failures=()

# check NAME COMMAND...: one check, passed when the command succeeds; false when it does not.
check() {
    local name=$1
    shift
    say "Checking $name"
    if ! "$@" >&2; then
        failures+=("$name")
        return 1
    fi
    passed=$((passed + 1))
}

# count_tests PRESET JUNIT_FILE: every test case of a CTest run.
count_tests() {
    local outcome name
    while read -r outcome name; do
        tests=$((tests + 1))
        case $outcome in
            passed) passed=$((passed + 1)) ;;
            skipped) skipped=$((skipped + 1)) ;;
            *) failures+=("$name ($1)") ;;
        esac
    done < <(outcomes <"$2")
}

# One line a test: passed, skipped or failed, and its name. A test whose program is missing did
# not run either, but that is a failure.
outcomes() {
    awk '
        function report() { if (name != "") print outcome, name }
        /<testcase / {
            report()
            match($0, / name="[^"]*"/)
            name = substr($0, RSTART + 7, RLENGTH - 8)
            outcome = /status="run"/ ? "passed" : "failed"
        }
        /<skipped message="SKIP_/ { outcome = "skipped" }
        END { report() }'
}

# Prints the failed ones, then the summary as the very last line. False when anything failed, and
# when no test ran.
print_summary() {
    local line
    [ "$tests" -gt 0 ] || failures+=("finding a test to run")
    line="quietlark: $passed passed, ${#failures[@]} failed"
    [ ${#failures[@]} -eq 0 ] || printf 'failed: %s\n' "${failures[@]}"
    [ "$skipped" -eq 0 ] || line+=", $skipped skipped"
    printf '%s\n' "$line"
    [ ${#failures[@]} -eq 0 ]
}
