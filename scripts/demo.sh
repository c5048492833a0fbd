#!/usr/bin/env bash
# Builds the module and the host emulator, then runs the demo: the emulated terminal loads
# libPFChartModule.so.1, goes through the start-up exchange, and draws the three chart
# types of the USD/CHF example data into demo-out/.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release -j"$(nproc)" --target pfhost PFChartModule
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
exec build/release/pfhost demo --out demo-out "$@"
