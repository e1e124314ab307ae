#!/usr/bin/env bash
# Tests that derive_domain accepts every layout of a domain, and refuses other files with one line that
# names the file and the fault, without output files.
# usage: derive_domain_test.sh DERIVE_DOMAIN GOOD_DOMAIN
set -u
derive=$1 good=$2
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

p=$(sed -n 's/^p = //p' "$good") q=$(sed -n 's/^q = //p' "$good") g=$(sed -n 's/^g = //p' "$good")

domain() { printf 'p = %s\nq = %s\ng = %s\n' "$1" "$2" "$3" > test.domain; }
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }

refused() { # FAULT: what the line must say of test.domain
    rm -f tables numbers
    "$derive" test.domain tables numbers > out 2>&1
    [ $? = 1 ] || fail "exit status of: $1"
    [ "$(cat out)" = "derive_domain: test.domain: $1" ] || fail "expected '$1', got '$(cat out)'"
    [ ! -e tables ] && [ ! -e numbers ] || fail "left output: $1"
}

accepted() {
    "$derive" test.domain tables numbers || fail "refused: $1"
    cmp -s tables tables.good && cmp -s numbers numbers.good || fail "another result: $1"
}

"$derive" "$good" tables.good numbers.good || fail "the domain itself"
printf '# c\r\n\n  g=%s # c\n\tq =  %s\t\r\np= %s' "$g" "${q^^}" "$p" > test.domain
accepted "any order, case, blanks and comments"
domain "$p" "$q" "$(printf '%0128s' "$g" | tr ' ' 0)"
accepted "a generator with leading zeros"

top=$(printf 'ffff%s' "${p:4}")
even_p=$(printf '%s%x' "${p:0:127}" $((0x${p:127} - 1)))
clear_p=$(printf '%x%s' $((0x${p:0:1} & 7)) "${p:1}")
composite_q=$(printf '%x%s' $((0x${q:0:1})) "${q:1:38}1")

domain "${p:1}" "$q" "$g";              refused "p has 127 hexadecimal digits; expected 128"
domain "$p" "${q}0" "$g";               refused "q has 41 hexadecimal digits; expected 40"
domain "$p" "$q" "0${g}0";              refused "g has 130 hexadecimal digits; expected at most 128"
domain "$clear_p" "$q" "$g";            refused "the top bit of p is clear"
domain "$p" "0${q:1}" "$g";             refused "the top bit of q is clear"
domain "$even_p" "$q" "$g";             refused "p is even"
domain "${p:0:126}93" "$q" "$g";        refused "p is composite"
domain "$p" "${q:0:39}e" "$g";          refused "q is even"
domain "$p" "$composite_q" "$g";        refused "q is composite"
domain "$top" "$q" "$g";                refused "the top limb of p is 0xFFFF"
domain "$p" "ffffffffffffffffffffffffffffffffffffffd1" "$g"; refused "q does not divide p - 1"
domain "$p" "$q" 0;                     refused "g is out of range"
domain "$p" "$q" "$p";                  refused "g is out of range"
domain "$p" "$q" 1;                     refused "g is 1"
domain "$p" "$q" 2;                     refused "g^q is not 1 modulo p"
domain "$p" "${q:0:20} ${q:21}" "$g";   refused "line 2: q is not a hexadecimal number"
domain "$p" "" "$g";                    refused "line 2: q is not a hexadecimal number"
domain "0x${p:2}" "$q" "$g";            refused "line 1: p is not a hexadecimal number"
printf 'p = %s\nq = %s\n' "$p" "$q" > test.domain;           refused 'no line "g = HEX"'
printf 'p = %s\n\np = %s\n' "$p" "$p" > test.domain;         refused "line 3: p is given twice"
printf 'h = 1\n' > test.domain;                              refused "line 1: the name is not p, q or g"
printf 'p\n' > test.domain;                                  refused "line 1: not of the form NAME = HEX"
rm test.domain;                                              refused "No such file or directory"
: > test.domain;                                             refused 'no line "p = HEX"'
rm test.domain; mkdir test.domain;                           refused "not a file"

"$derive" "$good" tables /nowhere/numbers 2> out
[ $? = 1 ] || fail "exit status for a missing folder"
[ "$(cat out)" = "derive_domain: /nowhere/numbers: No such file or directory" ] || fail "$(cat out)"
"$derive" "" tables numbers 2> out && fail "accepted an empty path"
[ "$(cat out)" = "derive_domain: \"\": not a file" ] || fail "$(cat out)"
"$derive" /proc/self/mem tables numbers 2> out && fail "accepted a file that cannot be read"
[ "$(cat out)" = "derive_domain: /proc/self/mem: Input/output error" ] || fail "$(cat out)"
"$derive" 2> out
[ $? = 2 ] || fail "exit status without arguments"
[ "$(cat out)" = "usage: derive_domain DOMAIN_FILE TABLES_SOURCE NUMBERS_HEADER" ] || fail "$(cat out)"

[ "$failures" = 0 ]
