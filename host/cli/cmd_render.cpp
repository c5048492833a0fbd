// `pfhost render`: one price source in a chart window of the module, grabbed into a PNG.
#include <cstdio>

#include "host/cli/ChartPicture.h"
#include "host/cli/Commands.h"

namespace {

const char kUsage[] =
    "--data FILE.csv|NAME --type pf|renko|kagi [--box SIZE] [--reversal N] --out FILE.png [--size WxH]";

int runRender(const QStringList& args) {
    if (host::cli::options(args, "--data").size() > 1) {
        std::fprintf(stderr, "pfhost render: one --data; `pfhost chart` takes several\n");
        return 2;
    }
    return host::cli::RunChartCommand(args, "render", kUsage, false);
}

}  // namespace

PF_HOST_COMMAND("render", kUsage, "draw a chart type of a price file into a PNG through a chart window of the module",
                runRender);
