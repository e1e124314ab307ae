#!/usr/bin/env bash
# Examines the dependencies, exports and imports of the built library, and the functions that run at load.
# usage: library_test.sh LIBKTBASE BZERO    BZERO: the form of explicit_bzero that the library calls
set -u
library=$1 bzero=$2
failures=0

expect() { # WHAT EXPECTED GOT
    [ "$2" = "$3" ] || { echo "FAILED: $1: expected '$2', got '$3'"; failures=$((failures + 1)); }
}
field() { readelf -dW "$library" | sed -n "s/.*$1.*\\[\\(.*\\)\\]$/\\1/p"; }

expect "name" libktbase.so.1 "$(field SONAME)"
expect "needs nothing but the language's library and libc" "" \
    "$(field NEEDED | grep -vxE 'libstdc\+\+\.so\.6|libm\.so\.6|libgcc_s\.so\.1|libc\.so\.6')"
expect "stack" "RW" "$(readelf -lW "$library" | awk '/GNU_STACK/ { print $7 }')"

# A host may define a function of the same name, and may hold a copy of an exported variable.
expect "own functions that a host could replace" 0 \
    "$(readelf -rW "$library" | grep JUMP_SLOT | grep -c KTBASE_1)"
expect "own exported variables that are bound inside" 0 "$(readelf -dW "$library" | grep -cw SYMBOLIC)"

imports=$(nm -D --undefined-only "$library")
expect "checked calls where the compiler knows the size" "$bzero" "$(grep -o '\<[a-z_]*bzero[a-z_]*' <<< "$imports")"
# The checked form aborts the host when the host's flags contain O_CREAT.
expect "form of open" "open" "$(grep -oE '\<(__)?open(64)?(_2|64_2)?\>' <<< "$imports")"

exported=$(nm -D --defined-only "$library" | sed -n 's/.* [^A] \(.*\)@@KTBASE_1$/\1/p' | sort)
interface=$(sed -n "s/.*<elf-symbol name='\([^']*\)'.*/\1/p" "$(dirname "$0")/../abi/ktbase-1.abi" | sort)
expect "symbols other than the interface's" "" "$(diff <(echo "$interface") <(echo "$exported"))"
expect "symbols outside the version" "" \
    "$(nm -D --defined-only "$library" | grep -v '@@KTBASE_1$' | grep -v ' A KTBASE_1$')"
expect "exported functions without endbr32, the target of an indirect call" "" \
    "$(objdump -d --no-show-raw-insn "$library" |
        awk '/^[0-9a-f]+ <.*>:$/ { name = substr($2, 2, length($2) - 3); getline
                                   if (!/endbr32/) print name }' | sort | comm -12 - <(echo "$exported"))"
# The compiler adds one entry to every library. A static constructor would be a second one.
expect "functions run at load" 4 "$((16#$(readelf -SW "$library" | awk '/\.init_array/ { print $(NF - 5) }')))"

[ "$failures" = 0 ]
