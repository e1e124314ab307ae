#!/usr/bin/env bash
# Files of all sizes, signed with a fresh key, verify; with one byte changed they do not.
# usage: signatures_test.sh KTSIGN VERIFY_FILE
set -eu
ktsign=$1 verify_file=$2 files=150
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
cd "$work"

fail() { echo "FAILED: $*"; exit 1; }

"$ktsign" new-key key
for ((i = 0; i < files; i++)); do
    size=$((i < 70 ? i : RANDOM * 8 + RANDOM % 8))
    head -c "$size" /dev/urandom > file
    "$ktsign" sign key file sig
    [ "$("$verify_file" key.pub file sig)" = valid ] || fail "$size bytes do not verify"

    if [ "$size" = 0 ]; then
        printf x > file
    else
        at=$((RANDOM * 8 % size))
        byte=$(od -An -tu1 -j "$at" -N 1 file)
        printf "\\x$(printf %x $((byte ^ 1 << RANDOM % 8)))" |
            dd of=file bs=1 seek="$at" conv=notrunc status=none
    fi
    status=0
    verdict=$("$verify_file" key.pub file sig) || status=$?
    [ "$status: $verdict" = "1: signature does not match" ] ||
        fail "$size bytes, one of them changed: $status: $verdict"
done
echo "$files files verified, and were refused with one byte changed"
