// `pfhost demo`: what the README's demo command shows.
#include <QDir>
#include <cstdio>
#include <cstring>

#include "host/Emulator.h"
#include "host/cli/Commands.h"

namespace {

int runDemo(const QStringList& args) {
    host::Emulator emulator(host::cli::emulatorOptions(args));
    std::string error;
    if (!emulator.loadModule(&error)) {
        std::fprintf(stderr, "pfhost: %s\n", error.c_str());
        return 1;
    }
    MODULE_INFO info;
    std::memset(&info, 0, sizeof info);
    emulator.host().getModuleInfo(&info);
    std::printf("The emulated terminal loaded %s\n\n%s", emulator.options().modulePath.c_str(),
                host::describeModuleInfo(info).c_str());
    emulator.startUp();
    std::printf("\nstart-up exchange:\n%s", emulator.host().journal().dump().c_str());
    return 0;
}

}  // namespace

PF_HOST_COMMAND("demo", "[--out DIR] [--module PATH]",
                "load the module, go through the terminal's start-up and show the charts", runDemo);
