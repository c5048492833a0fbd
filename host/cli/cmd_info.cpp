// `pfhost info`: loads the module, prints its information record and the start-up exchange.
#include <cstdio>

#include "host/cli/Commands.h"

namespace {

int runInfo(const QStringList& args) {
    bool ok = true;
    const int accounts = host::cli::option(args, "--accounts", "1").toInt(&ok);
    if (!ok || accounts < 0 || accounts > 99) {
        std::fprintf(stderr, "pfhost info: --accounts takes 0 to 99\n");
        return 2;
    }
    host::Emulator emulator(host::cli::emulatorOptions(args));
    return host::cli::startModule(emulator, true, accounts) ? 0 : 1;
}

}  // namespace

PF_HOST_COMMAND("info", "[--module PATH] [--work DIR] [--language NAME] [--log FILE] [--accounts N]",
                "load the module, print its information record and the start-up exchange", runInfo);
