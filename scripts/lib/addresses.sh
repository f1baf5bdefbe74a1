# shellcheck shell=bash

addresses_are_fixed() {
    [ $((0x$(cat /proc/self/personality) & 0x40000)) -ne 0 ]
}

# fix_addresses ARGUMENT...: the thread sanitizer finds no room for its shadow memory where the kernel
# spreads a program's addresses widely; then the script starts anew, with its own arguments, so that all
# of it runs with fixed addresses.
fix_addresses() {
    local spread
    spread=$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 28)
    if [ "$spread" -gt 28 ] && ! addresses_are_fixed && setarch -R true 2>/dev/null; then
        exec setarch -R "$BASH" "$0" "$@"
    fi
}
