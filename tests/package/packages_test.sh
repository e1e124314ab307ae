#!/usr/bin/env bash
# Makes the Debian packages of a build, and uses their files side by side as an installed system would.
# usage: packages_test.sh BUILD_DIR VERSION
set -eu
build=$1 version=$2 major=${2%%.*}
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
cd "$work"
failures=0

expect() { # WHAT EXPECTED GOT
    [ "$2" = "$3" ] || { echo "FAILED: $1: expected '$2', got '$3'"; failures=$((failures + 1)); }
}
for directory in first second; do
    cpack --config "$build/CPackConfig.cmake" -B "$directory" > log 2>&1 || { cat log; exit 1; }
done
for package in first/*.deb; do cmp "$package" "second/${package##*/}"; done

machine=$(dpkg --print-architecture)
suffix=_$version-1_$machine.deb
expect "packages" "ktbase-tools$suffix libktbase-dev$suffix libktbase$major$suffix" "$(cd first && echo *.deb)"
expect_dependencies() { # PACKAGE DEPENDENCY...
    local dependencies dependency
    dependencies=$(dpkg-deb -f "first/$1$suffix" Depends)
    for dependency in "${@:2}"; do
        [[ ", $dependencies" == *", $dependency"* ]] ||
            expect "dependencies of $1" "$dependency among them" "$dependencies"
    done
}
expect_dependencies ktbase-tools libc6 libssl3
expect_dependencies libktbase-dev "libktbase$major (= $version-1)"
if [ "$machine" = amd64 ]; then
    expect_dependencies "libktbase$major" libc6-i386 lib32stdc++6
    expect_dependencies libktbase-dev g++-multilib
fi

for package in first/*.deb; do dpkg-deb -x "$package" root; done
root=$work/root/usr
library=$(dirname "$root"/lib*/libktbase.so)
expect "name" "[libktbase.so.$major]" \
    "$(readelf -dW "$library/libktbase.so.$version" | awk '/SONAME/ { print $NF }')"
expect "link of the linker" "libktbase.so.$version" "$(basename "$(realpath "$library/libktbase.so")")"
expect "link of the loader" "libktbase.so.$version" "$(basename "$(realpath "$library/libktbase.so.$major")")"
expect "ktsign" "ktsign $version" "$("$root/bin/ktsign" --version | head -n 1)"
for page in man1/ktsign.1 man3/ktbase.3; do
    expect "$page" "ktbase $version" \
        "$(zcat "$root/share/man/$page.gz" | sed -n 's/^\.TH.*"\(ktbase [^"]*\)".*/\1/p')"
done
for package in ktbase-tools libktbase-dev "libktbase$major"; do
    expect "newest release of $package" "ktbase ($version-1)" \
        "$(zcat "$root/share/doc/$package/changelog.Debian.gz" | sed -n '1s/) .*/)/p')"
done
for option in $("$root/bin/ktsign" --help | grep -oE 'ktsign [a-z-]+|--[a-z]+' | sed 's/.* //'); do
    zcat "$root/share/man/man1/ktsign.1.gz" | sed 's/\\-/-/g' | grep -qE "^(\.(TP|B|BI)|\\\\fB).*$option" ||
        expect "ktsign(1)" "a description of $option" "none"
done

# Compiling and linking are two commands, so each half of the flags has to be complete.
export PKG_CONFIG_LIBDIR=$root/share/pkgconfig:$root/lib/pkgconfig LD_LIBRARY_PATH=$library
cat > host.cpp <<'END'
#include <ktbase/longarith.h>
#include <ktbase/platform.h>
#include <ktbase/text.h>
#include <ktbase/version.h>
#include <cstdio>
int main() {
    unsigned char text[] = {'a', 'b', 'c'};
    InitHash(&Hash);
    HashBuf(text, sizeof text, &Hash);
    EndHash(&Hash);
    for (const unsigned word : Hash.state) std::printf("%08x", word);
    std::printf(" %s %d.%d.%d\n", ktbase::kVersion, ktbase::kVersionMajor, ktbase::kVersionMinor,
                ktbase::kVersionPatch);
}
END
read -ra compile_flags < <(pkg-config --cflags ktbase)
read -ra link_flags < <(pkg-config --libs ktbase)
g++ -std=c++20 "${compile_flags[@]}" -c host.cpp
g++ host.o "${link_flags[@]}" -o host
# FIPS 180 (1993), appendix A.
expect "host" "0164b8a914cd2a5e74c4f7ff082c4d97f1edf880 $version $version" "$(./host)"
expect "pkg-config" "$version" "$(pkg-config --modversion ktbase)"

[ "$failures" = 0 ]
