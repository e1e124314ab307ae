#!/usr/bin/env bash
# Compares what the examples print in a fresh directory.
# usage: examples_test.sh DIRECTORY_OF_THE_EXAMPLES
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
printf 0123456789 > ten.txt
: > empty.txt
ln -s ten.txt link.txt
ln -s none dangling.txt
{
    "$1/list_files" '[!d]*.txt' | sort
    "$1/list_files" 'dang*'
    "$1/list_files" 'none*' 2>&1 || echo "exit $?"
    "$1/list_files" 'ten.txt/*' 2>&1 || echo "exit $?"
    # The search for leaks does not work under strace.
    ASAN_OPTIONS=detect_leaks=0 \
        strace -o /dev/null -e inject=getdents64:error=EIO:when=2 "$1/list_files" 'empty*' 2>&1 || echo "exit $?"
    ln -s "$1/daily_directory" .
    TZ=UTC0 ./daily_directory 1000000000 'open "my log.txt" append'
} > printed
diff - printed <<'END'
-  0 empty.txt
- 10 ten.txt
l 10 link.txt -> ten.txt
l 4 dangling.txt -> none (No such file or directory)
list_files: none*: nothing matches
exit 1
list_files: ten.txt/*: Not a directory
exit 1
list_files: empty*: Input/output error
- 0 empty.txt
exit 1
settings: .\settings.ini
directory: logs\2001\09\09
word: open
word: my log.txt
word: append
END
