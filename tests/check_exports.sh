#!/usr/bin/env bash
# Fails unless the library's dynamic symbol table defines exactly the four entry points and
# the skin's (LoadSkin).
set -euo pipefail
lib="$1"
actual=$(nm -D --defined-only "$lib" | awk '{print $3}' | sed 's/@.*//' | sort)
expected=$(printf '%s\n' GetModule GetModuleInfo Initialize LoadSkin ReceiveMessage | sort)
if [ "$actual" != "$expected" ]; then
  echo "exported symbols of $lib differ from the entry points:" >&2
  diff <(echo "$expected") <(echo "$actual") >&2 || true
  exit 1
fi
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
if [ "$soname" != "libPFChartModule.so.1" ]; then
  echo "SONAME is '$soname', expected libPFChartModule.so.1" >&2
  exit 1
fi
echo "exports: GetModule GetModuleInfo Initialize LoadSkin ReceiveMessage; SONAME $soname"
