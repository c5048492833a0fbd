// Where the emulator finds the module and the example price data. A program of the build
// tree uses the files of that build and checkout. An installed pfhost (<prefix>/bin) finds
// them in the installed layout beside it, <prefix>/lib/PFChartModule/libPFChartModule.so.1
// and <prefix>/share/PFChartModule/examples, looked up relative to the program's own folder,
// so that an installation works wherever it is unpacked.
#pragma once

#include <string>

namespace host {

// The module the terminal loads when no other is named: the installed one next to the
// program when there is one, otherwise the one this build made.
std::string defaultModulePath();

// The folder of the built-in instruments' price files: the installed examples when the
// program is installed, otherwise the checkout's examples/.
std::string examplesDir();

}  // namespace host
