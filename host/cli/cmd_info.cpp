// `pfhost info`: loads the module, prints its information record and the start-up exchange.
#include <QString>
#include <cstdio>
#include <cstring>

#include "host/Emulator.h"
#include "host/cli/Commands.h"

namespace {

int runInfo(const QStringList& args) {
    host::Emulator emulator(host::cli::emulatorOptions(args));
    std::string error;
    if (!emulator.loadModule(&error)) {
        std::fprintf(stderr, "pfhost: %s\n", error.c_str());
        return 1;
    }
    MODULE_INFO info;
    std::memset(&info, 0, sizeof info);
    emulator.host().getModuleInfo(&info);
    std::printf("%s", host::describeModuleInfo(info).c_str());
    emulator.startUp();
    std::printf("\nstart-up exchange:\n%s", emulator.host().journal().dump().c_str());
    return 0;
}

}  // namespace

PF_HOST_COMMAND("info", "[--module PATH] [--work DIR] [--language NAME]",
                "load the module, print its information record and the start-up exchange", runInfo);
