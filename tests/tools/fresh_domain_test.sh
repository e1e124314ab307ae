#!/usr/bin/env bash
# Builds the library in a domain that openssl makes, and runs the test of signatures there.
# usage: fresh_domain_test.sh SOURCE_DIR SIGNATURES_TEST CMAKE_ARGUMENT...
set -eu
source=$1 signatures_test=$2
shift 2
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT

openssl genpkey -genparam -algorithm DSA -pkeyopt dsa_paramgen_bits:512 \
    -pkeyopt dsa_paramgen_q_bits:160 -out "$work/dsa.pem" 2> /dev/null
openssl asn1parse -in "$work/dsa.pem" |
    awk -F: '/INTEGER/ { print substr("pqg", ++n, 1) " = " $NF }' > "$work/fresh.domain"

build() { cmake --build "$work/build" > "$work/log" 2>&1; }
configure() { cmake -S "$source" -B "$work/build" "$@" > "$work/log" 2>&1; }
quietly() { "$@" || { cat "$work/log"; exit 1; }; }

quietly configure "$@" -DKTBASE_DOMAIN="$work/fresh.domain"
quietly build
bash "$signatures_test" "$work/build/tools/ktsign" "$work/build/examples/verify_file"

# A key of this domain is a stranger in another one, and a changed domain file rebuilds the library.
"$work/build/tools/ktsign" new-key "$work/key"
cp "$source/longarith/domain/fips186.domain" "$work/fresh.domain"
quietly build
if "$work/build/tools/ktsign" public-key "$work/key" "$work/pub" 2> "$work/error"; then
    echo "FAILED: a key of another domain was taken"
    exit 1
fi
[ "$(cat "$work/error")" = "ktsign: $work/key: a key of another domain" ] && [ ! -e "$work/pub" ]

# What is no domain fails the build, and the line that says why is in its output.
echo "p = 1" > "$work/fresh.domain"
if build; then
    echo "FAILED: a broken domain was built"
    exit 1
fi
grep -q "^derive_domain: $work/fresh.domain: p has 1 hexadecimal digits" "$work/log"
