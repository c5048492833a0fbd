// Compiled on its own with `g++ -m32 -fsyntax-only` to check the 32-bit record layout
// the terminal uses, and as part of the normal build for the 64-bit figures.
#include "abi/records.h"
#include "abi/PFChartModuleAbi.h"
