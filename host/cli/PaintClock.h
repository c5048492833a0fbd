// With PFHOST_PAINT_CLOCK set in the environment, `pfhost terminal` tells when its start-up
// is on screen: once the terminal is ready, and each of its chart windows has finished its
// first paint after that, it prints one line on standard output,
//   pfhost terminal: painted N of M windows at monotonic T ns
// T read from CLOCK_MONOTONIC, the one clock every process of the machine shares, so that the
// program that started pfhost can measure from its own exec. A window that has not painted
// within 30 s is given up (N less than M).
#pragma once

namespace host {
class Emulator;
namespace terminal {
class Terminal;
}
namespace cli {

void ReportFirstPaint(Emulator& emulator, terminal::Terminal& terminal);

}  // namespace cli
}  // namespace host
