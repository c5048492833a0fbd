// `pfhost render`: one chart type of a price file drawn into a PNG by the module's renderer.
#include <QFileInfo>
#include <QRegularExpression>
#include <cstdio>

#include "host/DataCore.h"
#include "host/cli/ChartPicture.h"
#include "host/cli/Commands.h"

namespace {

const char kUsage[] =
    "--data FILE.csv|NAME --type pf|renko|kagi [--box SIZE] [--reversal N] --out FILE.png [--size WxH]";

int usage() {
    std::fprintf(stderr, "usage: pfhost render %s\n", kUsage);
    return 2;
}

int runRender(const QStringList& args) {
    const QString source = host::cli::option(args, "--data");
    const QString out = host::cli::option(args, "--out");
    host::cli::ChartPicture picture;
    if (source.isEmpty() || out.isEmpty() ||
        !host::data::parseChartType(host::cli::option(args, "--type").toStdString(), &picture.type))
        return usage();
    bool ok = true;
    picture.settings.box = host::cli::option(args, "--box", "0").toDouble(&ok);
    if (!ok) return usage();
    picture.settings.reversal = host::cli::option(args, "--reversal", "0").toInt(&ok);
    if (!ok) return usage();
    const QRegularExpressionMatch size =
        QRegularExpression("^(\\d+)x(\\d+)$").match(host::cli::option(args, "--size", "1200x800"));
    if (!size.hasMatch()) return usage();
    picture.size = QSize(size.captured(1).toInt(), size.captured(2).toInt());
    if (picture.size.width() < 100 || picture.size.height() < 100 || picture.size.width() > 20000 ||
        picture.size.height() > 20000) {
        std::fprintf(stderr, "pfhost render: the size must be from 100x100 to 20000x20000\n");
        return 2;
    }

    host::Emulator emulator(host::cli::emulatorOptions(args));
    std::string error;
    // A file path, or the name of a built-in instrument.
    if (QFileInfo::exists(source)) {
        const host::data::Instrument* instrument =
            emulator.data().loadInstrument(source.toStdString(), host::InstrumentOptions(), &error);
        if (!instrument) {
            std::fprintf(stderr, "pfhost render: %s\n", error.c_str());
            return 1;
        }
        picture.instrument = instrument->name();
    } else {
        picture.instrument = source.toStdString();
    }
    if (!host::cli::SaveChart(emulator, picture, out, &error)) {
        std::fprintf(stderr, "pfhost render: %s\n", error.c_str());
        return 1;
    }
    std::printf("%s: %s\n", qPrintable(out), qPrintable(picture.Describe()));
    return 0;
}

}  // namespace

PF_HOST_COMMAND("render", kUsage, "draw a chart type of a price file into a PNG with the module's renderer",
                runRender);
