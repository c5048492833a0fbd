#!/usr/bin/env bash
# Makes the Debian package of a build, unpacks it into a temporary root as dpkg would
# install it (dpkg -x) and runs the installed pfhost from there: it must load the installed
# module, not the build tree's, and read the built-in instruments from the installed examples.
#   check_package.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1
src=$2
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
fail() { echo "package: $*" >&2; exit 1; }

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$tmp/out" >"$tmp/cpack.log" 2>&1 ||
    { cat "$tmp/cpack.log"; fail "cpack failed"; }
debs=("$tmp"/out/*.deb)
[ ${#debs[@]} -eq 1 ] && [ -f "${debs[0]}" ] || fail "expected one .deb in $tmp/out"
deb=${debs[0]}
echo "$(basename "$deb"): $(dpkg-deb -f "$deb" Depends)"
[ "$(dpkg-deb -f "$deb" Package)" = pfchartmodule ] || fail "package name"
dpkg-deb -f "$deb" Depends | grep -q libqt5widgets5 || fail "Depends lacks the Qt libraries"

dpkg -x "$deb" "$tmp/root"
usr=$tmp/root/usr
module=$usr/lib/PFChartModule/libPFChartModule.so.1
# Exactly these files: the module (no development link), the program and the examples.
expected=$( (echo usr/bin/pfhost; echo usr/lib/PFChartModule/libPFChartModule.so.1
             cd "$src/examples" && find . -type f | sed 's|^\./|usr/share/PFChartModule/examples/|') | sort)
actual=$(cd "$tmp/root" && find . -type f -o -type l | sed 's|^\./||' | sort)
[ "$actual" = "$expected" ] || { diff <(echo "$expected") <(echo "$actual") >&2 || true; fail "unexpected contents"; }
"$src/tests/check_exports.sh" "$module"

# Run from elsewhere, so that nothing is found relative to the working folder.
cd "$tmp"
info=$("$usr/bin/pfhost" info 2>&1) || { echo "$info"; fail "pfhost info failed"; }
echo "$info" | grep -qF "loaded $module" || { echo "$info"; fail "pfhost did not load the installed module"; }
echo "$info" | grep -m1 -F "loaded"
"$usr/bin/pfhost" render --data USDCHF --type pf --size 400x300 --out "$tmp/usdchf.png" >/dev/null ||
    fail "pfhost render of the built-in USDCHF failed"
[ -s "$tmp/usdchf.png" ] || fail "no picture"
# The built-in instruments come from the installed examples: without the file there is none.
rm "$usr/share/PFChartModule/examples/usdchf-30min.csv"
if "$usr/bin/pfhost" render --data USDCHF --type pf --out "$tmp/none.png" >/dev/null 2>&1; then
    fail "USDCHF was read from outside the installation"
fi
echo "package: installed pfhost loads the installed module and examples"
