// `pfhost chart`: a chart window of the module, with one area per price source, grabbed
// into a PNG.
#include "host/cli/ChartPicture.h"
#include "host/cli/Commands.h"

namespace {

const char kUsage[] =
    "--data FILE.csv|NAME [--data ...] --type pf|renko|kagi [--box SIZE] [--reversal N] [--size WxH] "
    "[--replay N] [--answer yes|no] [--save-layout FILE.xml] [--print FILE.pdf] [--accounts N] "
    "[--trade deal|order[:K] ...] [--at X,Y] [--blotter] [--zoom in|out] [--scroll N] [--close-area I] "
    "[--delete-line I] [--undo] [--undo-list] [--skin FILE.xml ...] [--study NAME:TIME,PRICE[:TIME,PRICE...] ...] "
    "--out FILE.png\n"
    "    | --load-layout FILE.xml [--type pf|renko|kagi] [--data FILE.csv|NAME ...] [the options above] --out FILE.png";

int runChart(const QStringList& args) { return host::cli::RunChartCommand(args, "chart", kUsage, true); }

}  // namespace

PF_HOST_COMMAND("chart", kUsage,
                "open a chart window of the module, drop each price source on it (one area each) or load a saved "
                "layout into it, replay the last N quotes, draw line studies with the mouse, zoom, scroll, close "
                "areas, delete lines and undo, and grab the window into a PNG; then save its layout, print it, and "
                "trade from its context menu; --skin loads a skin document before the window is made",
                runChart);
