#!/usr/bin/env bash
# The shape of the built library: machine, name, what it needs, and what it does when it is loaded.
# usage: library_test.sh LIBKTBASE
set -u
library=$1
failures=0

expect() { # WHAT EXPECTED GOT
    [ "$2" = "$3" ] || { echo "FAILED: $1: expected '$2', got '$3'"; failures=$((failures + 1)); }
}
field() { sed -n "s/.*$1.*\\[\\(.*\\)\\]$/\\1/p" <<< "$dynamic"; }

dynamic=$(readelf -dW "$library")
expect "machine" "ELF32 Intel 80386" \
    "$(readelf -hW "$library" | awk '/Class:/ { c = $2 } /Machine:/ { print c, $2, $3 }')"
expect "name" libktbase.so.1 "$(field SONAME)"
expect "needs nothing but the language's library and libc" "" \
    "$(field NEEDED | grep -vxE 'libstdc\+\+\.so\.6|libm\.so\.6|libgcc_s\.so\.1|libc\.so\.6')"
expect "symbols are bound before the host runs" 1 "$(grep -c 'FLAGS_1.*NOW' <<< "$dynamic")"
expect "text relocations" 0 "$(grep -c TEXTREL <<< "$dynamic")"
expect "own exported data is not bound inside" 0 "$(grep -cw SYMBOLIC <<< "$dynamic")"
expect "stack" "RW" "$(readelf -lW "$library" | awk '/GNU_STACK/ { print $7 }')"
# One entry is the compiler's own, in every library; a static constructor would be a second.
expect "functions run at load" 4 "$((16#$(readelf -SW "$library" | awk '/\.init_array/ { print $(NF - 5) }')))"

[ "$failures" = 0 ]
