#!/usr/bin/env bash
# The memory routines leave no name for the linker to find elsewhere.
# usage: memory_routines_calls_test.sh OBJECT
set -eu
object=$1
nm --defined-only "$object" | grep -q ' e_memcpy$'
calls=$(nm -u "$object" | grep -vw _GLOBAL_OFFSET_TABLE_ || true)
[ -z "$calls" ] || { echo "FAILED: $object calls $calls"; exit 1; }
