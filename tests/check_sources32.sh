#!/usr/bin/env bash
# Compiles the module's sources for the 32-bit terminal (g++ -m32 -fsyntax-only): nothing in
# them may assume 64-bit pointers or longs. Qt's headers are the same for both widths.
#   check_sources32.sh SOURCE_DIR QT_INCLUDE_DIR
set -euo pipefail
src=$1
qt=$2
status=0
for f in "$src"/module/*.cpp "$src"/data/*.cpp "$src"/gx/*.cpp "$src"/gx/*/*.cpp "$src"/gui/*.cpp "$src"/property/*.cpp "$src"/xml/*.cpp "$src"/undo/*.cpp; do
    [ -f "$f" ] || continue
    if ! g++ -m32 -std=c++17 -fsyntax-only -fPIC -Werror=narrowing -I"$src" -I"$qt" -I"$qt/QtCore" -I"$qt/QtGui" \
            -I"$qt/QtWidgets" -I"$qt/QtXml" -I"$qt/QtPrintSupport" "$f"; then
        echo "32-bit compile failed: $f"
        status=1
    fi
done
exit $status
