#!/usr/bin/env bash
# The Debian packages, made by script/package and unpacked side by side: what they say they need, that
# they are the same bytes when made again, and that what they hold works.
# usage: packages_test.sh SOURCE_DIR INSTALLED_TEST VERSION HOST_CPP
set -eu
source=$1 installed_test=$2 version=$3 host_cpp=$4
work=$(mktemp -d) && trap 'rm -rf "$work"' EXIT
export SOURCE_DATE_EPOCH=1000000000 # with or without a repository
fail() { echo "FAILED: $*"; exit 1; }

mapfile -t packages < <("$source/script/package" "$work/build")
names=$(basename -a "${packages[@]}" | sort | xargs)
machine=$(dpkg --print-architecture)
[ "$names" = "ktbase-tools_$version-1_$machine.deb libktbase-dev_$version-1_$machine.deb \
libktbase${version%%.*}_$version-1_$machine.deb" ] || fail "packages: $names"

needs() { # PACKAGE DEPENDENCY...: each is in its Depends
    local depends word
    depends=$(dpkg-deb -f "$work/build/${1}_$version-1_$machine.deb" Depends)
    for word in "${@:2}"; do
        [[ ", $depends" == *", $word"* ]] || fail "$1 needs $depends, not $word"
    done
}
if [ "$machine" = amd64 ]; then
    needs "libktbase${version%%.*}" libc6-i386 lib32stdc++6
    needs libktbase-dev g++-multilib
fi
needs ktbase-tools libc6 libssl3
needs libktbase-dev "libktbase${version%%.*} (= $version-1)"

mkdir "$work/root"
for package in "${packages[@]}"; do dpkg-deb -x "$package" "$work/root"; done
libraries=$(cd "$work/root/usr" && find . -name "libktbase.so.$version" -printf '%P')
bash "$installed_test" "$version" "$work/root/usr/share/doc/ktbase/CHANGELOG.md" "$host_cpp" \
    "$work/root/usr" "${libraries%/*}"

md5sum "${packages[@]}" > "$work/sums"
rm "${packages[@]}"
"$source/script/package" "$work/build" > /dev/null
md5sum --quiet -c "$work/sums"
