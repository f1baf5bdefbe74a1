#!/usr/bin/env bash
# check_floors.sh FLOORS SRC: fails when a file includes a folder that its own does not stand on.
# Each line of FLOORS is: floor folder [quietlark::floor...].
set -euo pipefail
floors=$1 src=$2
status=0

declare -A folder_of below
while read -r name folder uses; do
    [ -n "$name" ] || continue
    folder_of[$name]=$folder
    below[$name]=${uses//quietlark::/}
done <"$floors"

# The floor that owns a path: the one with the longest matching folder.
floor_of() {
    local path=$1 best="" name
    for name in "${!folder_of[@]}"; do
        case $path in "${folder_of[$name]}"/*)
            [ "${#folder_of[$name]}" -gt "${#best}" ] && best=${folder_of[$name]} && echo "$name" ;;
        esac
    done | tail -n 1
}

declare -A reachable
reach() {
    local name
    for name in ${below[$1]}; do
        reachable[$name]=1
        reach "$name"
    done
}

for name in "${!folder_of[@]}"; do
    reachable=([$name]=1)
    reach "$name"
    while IFS=: read -r file included; do
        [ "$(floor_of "${file#"$src"/}")" = "$name" ] || continue
        target=$(floor_of "$included")
        if [ -n "$target" ] && [ -z "${reachable[$target]:-}" ]; then
            echo "$file includes \"$included\", but $name does not stand on $target"
            status=1
        fi
    done < <(grep -rHoP '^\s*#include "\K[^"]+' --include='*.h' --include='*.cpp' \
                  "$src/${folder_of[$name]}")
done
exit $status
