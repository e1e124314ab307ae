#!/usr/bin/env bash
# The object of the memory routines refers to no symbol that the linker could find elsewhere.
# usage: memory_routines_calls_test.sh OBJECT...
set -eu
object=$(nm -A --defined-only "$@" | sed -n 's/:[0-9a-f]* T e_memcpy$//p')
calls=$(nm -u "$object" | grep -vw _GLOBAL_OFFSET_TABLE_ || true)
[ -z "$calls" ] || { echo "FAILED: $object calls $calls"; exit 1; }
