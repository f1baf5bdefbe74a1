#!/usr/bin/env bash
# idle_benchmark.sh BIN [SECONDS]
#
# What Quietlark costs while nobody dictates, beside a tray program that does nothing: processor
# time, wake-ups, memory, and whether the microphone is open. On a virtual desktop with a tray.
set -euo pipefail
bin=$1 seconds=${2:-600}
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
for part in messages processes virtual_desktop virtual_microphone quietlark; do
    # shellcheck source=/dev/null
    . "$root/scripts/lib/$part.sh"
done
trap close_virtual_desktop EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# In clock ticks of all threads, user and system.
processor_ticks() {
    awk '{ print $14 + $15 }' "/proc/$1/stat"
}

# How often a thread went to sleep of its own accord, and so woke again.
wake_ups() {
    cat "/proc/$1/task"/*/status | awk '/^voluntary/ { sum += $2 } END { print sum }'
}

proportional_kibibytes() {
    awk '/^Pss:/ { print $2 }' "/proc/$1/smaps_rollup"
}

report() {
    local name=$1 id=$2 ticks=$3 wakes=$4
    awk -v name="$name" -v seconds="$seconds" -v perSecond="$(getconf CLK_TCK)" \
        -v ticks="$(($(processor_ticks "$id") - ticks))" \
        -v wakes="$(($(wake_ups "$id") - wakes))" -v kibibytes="$(proportional_kibibytes "$id")" \
        'BEGIN {
            printf "%-18s %.3f %% CPU, %.2f wake-ups a second, %.1f MB proportional set size\n",
                name, 100 * ticks / perSecond / seconds, wakes / seconds, kibibytes * 1024 / 1e6
        }'
}

open_virtual_desktop
start_microphone
start_server
choose_started_server
write_configuration
start_quietlark
start empty_tray_program "$bin/empty_tray_program"
yardstick_id=$started_id
wait_until 30 "$bin/quietlark" doctor || fail "$("$bin/quietlark" doctor)"
# Both have shown what they show at the start.
sleep 5
ticks=$(processor_ticks "$quietlark_id") wakes=$(wake_ups "$quietlark_id")
yardstick_ticks=$(processor_ticks "$yardstick_id") yardstick_wakes=$(wake_ups "$yardstick_id")
sleep "$seconds"
printf 'idle for %d s\n' "$seconds"
report Quietlark "$quietlark_id" "$ticks" "$wakes"
report 'empty tray program' "$yardstick_id" "$yardstick_ticks" "$yardstick_wakes"
if microphone_is_recorded_by 2; then
    echo 'the microphone is open'
else
    echo 'no sound stream is open'
fi
