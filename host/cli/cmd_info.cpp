// `pfhost info`: loads the module, prints its information record and the start-up exchange.
#include "host/cli/Commands.h"

namespace {

int runInfo(const QStringList& args) {
    host::Emulator emulator(host::cli::emulatorOptions(args));
    return host::cli::startModule(emulator) ? 0 : 1;
}

}  // namespace

PF_HOST_COMMAND("info", "[--module PATH] [--work DIR] [--language NAME] [--log FILE]",
                "load the module, print its information record and the start-up exchange", runInfo);
