// `pfhost records`: the records a chart-type provider computes for a price file.
#include <QFileInfo>
#include <cstdio>

#include "host/DataCore.h"
#include "host/data/ChartObject.h"
#include "host/data/RecordText.h"
#include "host/cli/Commands.h"

namespace {

bool number(const QStringList& args, const char* name, double* value) {
    const QString text = host::cli::option(args, name);
    if (text.isEmpty()) return true;
    bool ok = false;
    *value = text.toDouble(&ok);
    if (!ok) std::fprintf(stderr, "pfhost records: %s needs a number\n", name);
    return ok;
}

int runRecords(const QStringList& args) {
    const std::string source = host::cli::option(args, "--data").toStdString();
    host::data::ChartType type;
    if (source.empty() || !host::data::parseChartType(host::cli::option(args, "--type").toStdString(), &type)) {
        std::fprintf(stderr, "usage: pfhost records --data FILE.csv --type pf|renko|kagi [--box SIZE] "
                             "[--reversal N] [--percent P]\n");
        return 2;
    }
    double box = 0, reversal = 0, percent = 0;
    if (!number(args, "--box", &box) || !number(args, "--reversal", &reversal) ||
        !number(args, "--percent", &percent))
        return 2;

    host::Host h;
    host::DataCore core(h);
    std::string error;
    // A file path, or the name of a built-in instrument.
    host::data::Instrument* instrument = QFileInfo::exists(QString::fromStdString(source))
                                             ? core.loadInstrument(source, host::InstrumentOptions(), &error)
                                             : core.instrument(source);
    if (!instrument) {
        std::fprintf(stderr, "pfhost records: %s\n", error.empty() ? ("no file or instrument " + source).c_str()
                                                                    : error.c_str());
        return 1;
    }
    host::cli::reportSkippedRows("records", *instrument);
    host::data::ChartSettings settings;
    settings.box = box;
    settings.reversal = int(reversal);
    settings.percent = percent;
    void* handle = core.createChart(instrument->name(), type, settings, &error);
    if (!handle) {
        std::fprintf(stderr, "pfhost records: %s\n", error.c_str());
        return 1;
    }
    const host::data::ChartObject& chart = *core.chart(handle);
    const int decimals = chart.grid().digits();
    std::string reversalText = std::to_string(chart.settings().reversal) + " boxes";
    if (type == host::data::ChartType::Renko) reversalText = "2 boxes";
    if (type == host::data::ChartType::Kagi && chart.settings().percent > 0)
        reversalText = QString::number(chart.settings().percent).toStdString() + " %";
    std::printf("# %s %s, %zu quotes, box %.*f, reversal %s\n", instrument->name().c_str(),
                host::data::chartTypeName(type), instrument->quotes().size(), decimals, chart.settings().box,
                reversalText.c_str());
    std::printf("# time STEP VALUE TYPE END SOLID\n");
    for (const fxChartTypeRecord& r : chart.records()) std::printf("%s\n", host::data::recordLine(r, decimals).c_str());
    return 0;
}

}  // namespace

PF_HOST_COMMAND("records", "--data FILE.csv|NAME --type pf|renko|kagi [--box SIZE] [--reversal N] [--percent P]",
                "print the columns, bricks or strokes a chart-type provider computes from a price file", runRecords);
