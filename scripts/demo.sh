#!/usr/bin/env bash
# Builds the module and the host emulator, then runs the demo. With a display ($DISPLAY set)
# the emulated terminal opens as a desktop application with the example instruments and a
# prepared workspace of three chart windows (demo-out/workspace.xml, saved again on quit);
# without one, the emulated terminal loads libPFChartModule.so.1, goes through the start-up
# exchange and draws the three chart types of the USD/CHF example data into demo-out/.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j"$(nproc)" --target pfhost PFChartModule
mkdir -p demo-out
if [ -n "${DISPLAY:-}" ]; then
  [ -f demo-out/workspace.xml ] || cp docs/terminal/demo-workspace.xml demo-out/workspace.xml
  echo "demo: display $DISPLAY found: opening the emulated terminal (pfhost terminal) with the example"
  echo "      instruments and the workspace demo-out/workspace.xml; it is saved again when you quit."
  exec build/release/pfhost terminal --workspace demo-out/workspace.xml "$@"
fi
echo "demo: no display (\$DISPLAY is not set): writing the chart pictures into demo-out/ instead"
echo "      of opening the terminal."
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
exec build/release/pfhost demo --out demo-out "$@"
