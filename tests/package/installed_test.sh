#!/usr/bin/env bash
# An installed tree through pkg-config: its parts agree on the version, a host links and runs, and an
# installed example verifies what the installed ktsign signed.
# usage: installed_test.sh VERSION CHANGELOG HOST_CPP PREFIX LIBDIR
set -eu
version=$1 changelog=$2 host_cpp=$3 prefix=$4 library=$4/$5
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
cd "$work"
# Only the package's own directory: what is installed on this machine stands back.
export PKG_CONFIG_LIBDIR=$prefix/lib/pkgconfig LD_LIBRARY_PATH=$library
failures=0

expect() { # WHAT EXPECTED GOT
    [ "$2" = "$3" ] || { echo "FAILED: $1: expected '$2', got '$3'"; failures=$((failures + 1)); }
}

read -ra flags < <(pkg-config --cflags --libs ktbase)
g++ -std=c++20 "$host_cpp" "${flags[@]}" -o host
g++ -std=c++20 "$prefix/share/doc/ktbase/examples/verify_file.cpp" "${flags[@]}" -o verify_file

# FIPS 180 (1993), appendix A.
expect "host" "0164b8a914cd2a5e74c4f7ff082c4d97f1edf880 $version $version" "$(./host)"
expect "pkg-config" "$version" "$(pkg-config --modversion ktbase)"
expect "ktsign" "ktsign $version" "$("$prefix/bin/ktsign" --version | head -n 1)"
expect "man page" "ktbase $version" "$(sed -n 's/^\.TH.*"\(ktbase [^"]*\)".*/\1/p' "$prefix/share/man/man1/ktsign.1")"
expect "changelog" "$version" "$(sed -n 's/^## \[\([0-9.]*\)\] - 20..-..-..$/\1/p' "$changelog" | head -n 1)"
expect "name" "[libktbase.so.${version%%.*}]" \
    "$(readelf -dW "$library/libktbase.so.$version" | awk '/SONAME/ { print $NF }')"
expect "links" "libktbase.so.$version libktbase.so.$version" \
    "$(basename -a "$(realpath "$library/libktbase.so")" "$(realpath "$library/libktbase.so.${version%%.*}")" | xargs)"

echo content > file
"$prefix/bin/ktsign" new-key key
"$prefix/bin/ktsign" sign key file
expect "example" valid "$(./verify_file key.pub file file.sig)"
expect "ktsign" "file: valid" "$("$prefix/bin/ktsign" verify key.pub file)"
for command in $("$prefix/bin/ktsign" --help | grep -oE 'ktsign [a-z-]+|--[a-z]+' | sed 's/.* //'); do
    sed 's/\\-/-/g' "$prefix/share/man/man1/ktsign.1" | grep -qE "^(\.(TP|B|BI)|\\\\fB).*$command" ||
        expect "man page" "says what $command does" "does not"
done

[ "$failures" = 0 ]
