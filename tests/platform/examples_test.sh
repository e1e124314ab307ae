#!/usr/bin/env bash
# examples_test.sh LIST_FILES LIST_FILES_READ_ERROR DAILY_DIRECTORY: compares what the examples print,
# in a fresh directory. LIST_FILES_READ_ERROR cannot read a directory to its end.
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
printf 0123456789 > ten.txt
: > empty.txt
ln -s ten.txt link.txt
ln -s none dangling.txt
{
    "$1" '[!d]*.txt' | sort
    "$1" 'dang*'
    "$1" 'none*' 2>&1 || echo "exit $?"
    "$1" 'ten.txt/*' 2>&1 || echo "exit $?"
    "$2" '*' 2>&1 || echo "exit $?"
    ln -s "$3" daily_directory
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
list_files: *: Input/output error
- 0 empty.txt
exit 1
settings: .\settings.ini
directory: logs\2001\09\09
word: open
word: my log.txt
word: append
END
