#!/usr/bin/env bash
# Compares the example with the md5sum of coreutils: files of 0 to 300 bytes, large files, names that
# need escaping, standard input, and files that cannot be read.
# usage: md5sum_test.sh MD5SUM
set -eu
export LC_ALL=C
md5sum=$1
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
cd "$work"

for ((size = 0; size <= 300; size++)); do head -c "$size" /dev/urandom > "random.$size"; done
head -c 1000001 /dev/urandom > large
touch $'new\nline' 'back\slash' $'return\r'
files=(random.* large $'new\nline' 'back\slash' $'return\r' - "$md5sum" "$BASH" missing .)

status=0 expected_status=0
md5sum "${files[@]}" < large > expected 2> errors || expected_status=$?
"$md5sum" "${files[@]}" < large > got 2> got_errors || status=$?
diff expected got
diff <(sed 's/^md5sum: //' errors) <(sed 's/^md5sum: //' got_errors)
[ "$status" = "$expected_status" ] || { echo "FAILED: exit status $status"; exit 1; }
diff <(md5sum < large) <("$md5sum" < large)
