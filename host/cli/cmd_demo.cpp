// `pfhost demo`: what the README's demo command shows.
#include <QDir>
#include <cstdio>

#include "host/Emulator.h"
#include "host/cli/ChartPicture.h"
#include "host/cli/Commands.h"

namespace {

// The three chart types of the USD/CHF example data, each in a chart window of the module,
// grabbed into `folder` as usdchf-pf.png, usdchf-renko.png and usdchf-kagi.png.
int drawCharts(host::Emulator& emulator, const QString& folder) {
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "pfhost: cannot create %s\n", qPrintable(folder));
        return 1;
    }
    const struct {
        host::data::ChartType type;
        const char* file;
    } charts[] = {{host::data::ChartType::PointAndFigure, "usdchf-pf.png"},
                  {host::data::ChartType::Renko, "usdchf-renko.png"},
                  {host::data::ChartType::Kagi, "usdchf-kagi.png"}};
    std::printf("\ncharts:\n");
    for (const auto& c : charts) {
        host::cli::ChartPicture picture;
        picture.instruments = {"USDCHF"};
        picture.type = c.type;
        std::string error;
        const QString path = QDir(folder).filePath(QLatin1String(c.file));
        if (!host::cli::SaveChart(emulator, picture, path, &error)) {
            std::fprintf(stderr, "pfhost: %s\n", error.c_str());
            return 1;
        }
        std::printf("  %s: %s\n", qPrintable(path), qPrintable(picture.Describe()));
    }
    return 0;
}

int runDemo(const QStringList& args) {
    host::Emulator emulator(host::cli::emulatorOptions(args));
    if (!host::cli::startModule(emulator)) return 1;
    return drawCharts(emulator, host::cli::option(args, "--out", "demo-out"));
}

}  // namespace

PF_HOST_COMMAND("demo", "[--out DIR] [--module PATH]",
                "load the module, go through the terminal's start-up and show the charts", runDemo);
