#!/usr/bin/env bash
# The shape of the built library: machine, name, what it needs, and what it does when it is loaded.
# usage: library_test.sh LIBKTBASE BZERO    BZERO: the form of explicit_bzero that it calls
set -u
library=$1 bzero=$2
failures=0

expect() { # WHAT EXPECTED GOT
    [ "$2" = "$3" ] || { echo "FAILED: $1: expected '$2', got '$3'"; failures=$((failures + 1)); }
}
field() { sed -n "s/.*$1.*\\[\\(.*\\)\\]$/\\1/p" <<< "$dynamic"; }

dynamic=$(readelf -dW "$library")
segments=$(readelf -lW "$library")
imports=$(nm -D --undefined-only "$library")
expect "machine" "ELF32 Intel 80386" \
    "$(readelf -hW "$library" | awk '/Class:/ { c = $2 } /Machine:/ { print c, $2, $3 }')"
expect "name" libktbase.so.1 "$(field SONAME)"
expect "needs nothing but the language's library and libc" "" \
    "$(field NEEDED | grep -vxE 'libstdc\+\+\.so\.6|libm\.so\.6|libgcc_s\.so\.1|libc\.so\.6')"
expect "symbols are bound before the host runs" 1 "$(grep -c 'FLAGS_1.*NOW' <<< "$dynamic")"
# With the above: nothing that a call goes through can be written to once the library is bound.
expect "a segment made read-only after binding" 1 "$(grep -c GNU_RELRO <<< "$segments")"
expect "text relocations" 0 "$(grep -c TEXTREL <<< "$dynamic")"
expect "own exported data is not bound inside" 0 "$(grep -cw SYMBOLIC <<< "$dynamic")"
expect "own functions that a host's could take the place of" 0 \
    "$(readelf -rW "$library" | grep JUMP_SLOT | grep -c KTBASE_1)"
expect "stack" "RW" "$(awk '/GNU_STACK/ { print $7 }' <<< "$segments")"
# One of each folder, and of the products.
for function in KtGetFileAttributes HexStringToBuf GetBufferMD5 CheckSignature \
    "$(nm "$library" | awk '/montgomery_product_plain/ { print $3 }')"; do
    expect "calls in $function that guard its arrays on the stack" 1 \
        "$(objdump -d --disassemble="$function" "$library" | grep -c __stack_chk_fail)"
done
expect "checked calls where the compiler knows the size" "$bzero" "$(grep -o '\<[a-z_]*bzero[a-z_]*' <<< "$imports")"
# Its checked form would abort the host for flags that the host passes.
expect "opens files with open(2) itself" "open" "$(grep -oE '\<(__)?open(64)?(_2|64_2)?\>' <<< "$imports")"
exported=$(nm -D --defined-only "$library" | awk '$2 == "T" { print $3 }' | sed 's/@.*//' | sort)
expect "exported functions that an indirect call may not reach" "" \
    "$(objdump -d --no-show-raw-insn "$library" |
        awk '/^[0-9a-f]+ <.*>:$/ { name = substr($2, 2, length($2) - 3); getline
                                   if (!/endbr32/) print name }' | sort | comm -12 - <(echo "$exported"))"
[ -n "$exported" ] || expect "exported functions" "some" "none"
# One entry is the compiler's own, in every library; a static constructor would be a second.
expect "functions run at load" 4 "$((16#$(readelf -SW "$library" | awk '/\.init_array/ { print $(NF - 5) }')))"

interface=$(sed -n "s/.*<elf-symbol name='\([^']*\)'.*/\1/p" "$(dirname "$0")/../abi/ktbase-1.abi" | sort)
expect "symbols other than the interface's" "" \
    "$(diff <(echo "$interface") <(nm -D --defined-only "$library" | sed -n 's/.* [^A] \(.*\)@@KTBASE_1$/\1/p' | sort))"
expect "symbols outside the version" "" "$(nm -D --defined-only "$library" | grep -v '@@KTBASE_1$' | grep -v ' A KTBASE_1$')"

[ "$failures" = 0 ]
