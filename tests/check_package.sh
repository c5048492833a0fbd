#!/usr/bin/env bash
# Makes the Debian package of a build, installs it with dpkg into a temporary root (a dpkg
# database of its own, so the machine's is left alone; the maintainer scripts run too) and
# runs the installed pfhost from there: it must load the installed module, not the build
# tree's, and read the built-in instruments from the installed examples. Removing the
# package must leave no file of it behind. Where apt is there, the package's dependencies
# must also resolve on this machine. The package is named after the Qt it was built against.
#   check_package.sh BUILD_DIR SOURCE_DIR QT_MAJOR_VERSION
set -euo pipefail
build=$1
src=$2
qt=$3
name=pfchartmodule-qt$qt
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
fail() { echo "package: $*" >&2; exit 1; }

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$tmp/out" >"$tmp/cpack.log" 2>&1 ||
    { cat "$tmp/cpack.log"; fail "cpack failed"; }
debs=("$tmp"/out/*.deb)
[ ${#debs[@]} -eq 1 ] && [ -f "${debs[0]}" ] || fail "expected one .deb in $tmp/out"
deb=${debs[0]}
echo "$(basename "$deb"): $(dpkg-deb -f "$deb" Depends)"
[ "$(dpkg-deb -f "$deb" Package)" = "$name" ] || fail "package name"
[ "$(basename "$deb")" = "${name}_$(dpkg-deb -f "$deb" Version)_$(dpkg-deb -f "$deb" Architecture).deb" ] ||
    fail "file name"
dpkg-deb -f "$deb" Depends | grep -q "libqt${qt}widgets$qt" || fail "Depends lacks the Qt $qt libraries"
[ "$qt" != 6 ] || dpkg-deb -f "$deb" Depends | grep -q qt6-qpa-plugins || fail "Depends lacks the Qt 6 platform plugins"
other=$((qt == 5 ? 6 : 5))
! dpkg-deb -f "$deb" Depends | grep -q "libqt${other}" || fail "Depends names Qt $other libraries"

if command -v apt-get >/dev/null; then
    apt-get install --simulate "$deb" >"$tmp/apt.log" 2>&1 || { cat "$tmp/apt.log"; fail "dependencies do not resolve"; }
fi
mkdir -p "$tmp/root/var/lib/dpkg/info" "$tmp/root/var/lib/dpkg/updates"
touch "$tmp/root/var/lib/dpkg/status"
# The root holds no libraries, so dependencies are checked above, not here; scripts run
# outside it (the root has no shell).
in_root() { dpkg --root="$tmp/root" --log=/dev/null --force-depends --force-script-chrootless --force-not-root "$@"; }
in_root -i "$deb" >"$tmp/dpkg.log" 2>&1 || { cat "$tmp/dpkg.log"; fail "dpkg -i failed"; }
dpkg --root="$tmp/root" -s "$name" | grep -q '^Status: install ok installed' || fail "not installed"
usr=$tmp/root/usr
module=$usr/lib/PFChartModule/libPFChartModule.so.1
# Exactly these files: the module (no development link), the program and the examples.
expected=$( (echo usr/bin/pfhost; echo usr/lib/PFChartModule/libPFChartModule.so.1
             cd "$src/examples" && find . -type f | sed 's|^\./|usr/share/PFChartModule/examples/|') | sort)
installed_files() { (cd "$tmp/root" && find . -path ./var/lib/dpkg -prune -o \( -type f -o -type l \) -print | sed 's|^\./||' | sort); }
actual=$(installed_files)
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
# The installed module takes the installed sample skin through its skin entry point.
"$usr/bin/pfhost" chart --data USDCHF --type pf --size 400x300 \
    --skin "$usr/share/PFChartModule/examples/skins/dark/dark.xml" --out "$tmp/dark.png" >/dev/null ||
    fail "pfhost chart with the installed sample skin failed"
# The built-in instruments come from the installed examples: without the file there is none.
rm "$usr/share/PFChartModule/examples/usdchf-30min.csv"
if "$usr/bin/pfhost" render --data USDCHF --type pf --out "$tmp/none.png" >/dev/null 2>&1; then
    fail "USDCHF was read from outside the installation"
fi
cp "$src/examples/usdchf-30min.csv" "$usr/share/PFChartModule/examples/"
in_root -r "$name" >"$tmp/dpkg.log" 2>&1 || { cat "$tmp/dpkg.log"; fail "dpkg -r failed"; }
[ -z "$(installed_files)" ] || { installed_files >&2; fail "files left after removal"; }
echo "package: installed pfhost loads the installed module and examples; removal leaves nothing"
