# shellcheck shell=bash
# Counts what passed, failed and was skipped, and sums it up in one line.

passed=0
tests=0
failures=()
skips=()

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
    local outcome name reason
    while IFS=$'\t' read -r outcome name reason; do
        tests=$((tests + 1))
        case $outcome in
            passed) passed=$((passed + 1)) ;;
            skipped) skips+=("$name ($1): $reason") ;;
            *) failures+=("$name ($1)") ;;
        esac
    done < <(outcomes <"$2")
}

# One line a test: passed, skipped or failed, its name and, of a skipped one, the last thing it said
# that GoogleTest did not say. A test whose program is missing did not run either, but that is a
# failure.
outcomes() {
    awk -v OFS='\t' '
        function report() { if (name != "") print outcome, name, reason }
        /<testcase / {
            report()
            match($0, / name="[^"]*"/)
            name = substr($0, RSTART + 7, RLENGTH - 8)
            outcome = /status="run"/ ? "passed" : "failed"
            reason = ""
        }
        /<skipped message="SKIP_/ { outcome = "skipped" }
        /<system-out>/ { is_output = 1; sub(/.*<system-out>/, "") }
        is_output {
            line = $0
            sub(/<\/system-out>.*/, "", line)
            if (line ~ /[^ ]/ && line !~ /^\[|^Note: /) reason = line
        }
        /<\/system-out>/ { is_output = 0 }
        END { report() }'
}

# Prints the skipped and the failed ones, then the summary as the very last line. False when anything
# failed, and when no test ran.
print_summary() {
    local line
    [ "$tests" -gt 0 ] || failures+=("finding a test to run")
    line="quietlark: $passed passed, ${#failures[@]} failed"
    [ ${#skips[@]} -eq 0 ] || printf 'skipped: %s\n' "${skips[@]}"
    [ ${#failures[@]} -eq 0 ] || printf 'failed: %s\n' "${failures[@]}"
    [ ${#skips[@]} -eq 0 ] || line+=", ${#skips[@]} skipped"
    printf '%s\n' "$line"
    [ ${#failures[@]} -eq 0 ]
}
