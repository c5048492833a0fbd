#!/usr/bin/env bash
# Compiles the module's sources for the 32-bit terminal (g++ -m32 -fsyntax-only): nothing in
# them may assume 64-bit pointers or longs. Qt's headers are the same for both widths. The
# files are checked side by side, one compiler per core.
#   check_sources32.sh SOURCE_DIR QT_INCLUDE_DIR
set -euo pipefail
src=$1
qt=$2
check_one() {  # file: a 32-bit syntax check; names the file when it fails
    g++ -m32 -std=c++17 -fsyntax-only -fPIC -Werror=narrowing -I"$src" -I"$qt" -I"$qt/QtCore" -I"$qt/QtGui" \
        -I"$qt/QtWidgets" -I"$qt/QtXml" -I"$qt/QtPrintSupport" "$1" || { echo "32-bit compile failed: $1"; return 1; }
}
export -f check_one
export src qt
shopt -s nullglob
files=("$src"/module/*.cpp "$src"/data/*.cpp "$src"/gx/*.cpp "$src"/gx/*/*.cpp "$src"/gui/*.cpp
       "$src"/property/*.cpp "$src"/xml/*.cpp "$src"/undo/*.cpp)
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'check_one "$0"'
