#include "host/cli/ChartPicture.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <cstdio>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/cli/Commands.h"
#include "host/data/ChartObject.h"
#include "host/data/CsvPriceReader.h"

namespace host {
namespace cli {

namespace {

// Picture sizes `pfhost` accepts, in pixels per side.
const int kMinSide = 100;
const int kMaxSide = 10000;

QString describeSettings(data::ChartType type, const data::ChartSettings& s) {
    QString text = QStringLiteral("box %1").arg(s.box, 0, 'g', 10);
    // Renko always reverses after two bricks, so its reversal says nothing.
    if (type == data::ChartType::Kagi && s.percent > 0)
        text += QStringLiteral(", reversal %1 %").arg(s.percent);
    else if (type != data::ChartType::Renko)
        text += QStringLiteral(", reversal %1").arg(s.reversal);
    return text;
}

// The window's part of DrawChart: create, drop, replay, grab, destroy.
bool drawWindow(Emulator& emulator, ChartPicture& picture, std::string* error) {
    DataCore& core = emulator.data();
    ChartWindows& charts = emulator.charts();
    void* widget = charts.create(picture.type);
    if (!widget) {
        *error = "the module made no " + std::string(data::chartTypeName(picture.type)) + " chart window";
        return false;
    }
    for (const std::string& name : picture.instruments) {
        const int answer = charts.drop(widget, {name});
        if (answer != 0) {
            *error = "the chart window refused " + name + " (5007 answered " + std::to_string(answer) + ")";
            charts.destroy(widget);
            return false;
        }
    }
    const std::size_t before = core.notices().size();
    picture.replayed = 0;
    for (const std::string& name : picture.instruments) picture.replayed += core.replay(name, picture.replay);
    picture.notices = core.notices().size() - before;

    picture.image = charts.grab(widget, picture.size);
    picture.title = charts.title(widget);
    charts.destroy(widget);
    if (picture.image.isNull()) {
        *error = "the chart window could not be grabbed";
        return false;
    }
    return true;
}

}  // namespace

QString ChartPicture::Describe() const {
    QStringList parts;
    for (std::size_t i = 0; i < instruments.size(); ++i)
        parts << QString::fromStdString(instruments[i]) +
                     (i < used.size() ? QStringLiteral(" (%1)").arg(describeSettings(type, used[i])) : QString());
    QString text = QStringLiteral("%1 window \"%2\", %3x%4")
                       .arg(QString::fromLatin1(data::chartTypeName(type)), title)
                       .arg(size.width())
                       .arg(size.height());
    if (!parts.isEmpty()) text += QStringLiteral(": ") + parts.join(QStringLiteral(", "));
    if (replay > 0) text += QStringLiteral("; %1 quotes replayed, %2 updates").arg(replayed).arg(notices);
    return text;
}

bool DrawChart(Emulator& emulator, ChartPicture& picture, std::string* error) {
    DataCore& core = emulator.data();
    picture.used.clear();
    for (const std::string& name : picture.instruments) {
        const data::Instrument* instrument = core.instrument(name);
        if (!instrument) {
            *error = "no instrument " + name;
            return false;
        }
        data::ChartSettings used;
        if (!data::ChartObject::resolveSettings(*instrument, picture.settings, &used, error)) {
            *error = name + ": " + *error;
            return false;
        }
        picture.used.push_back(used);
    }

    // The chart objects the window's drops make get the picture's settings; the data
    // core's earlier ones come back afterwards.
    const data::ChartSettings previous = core.chartSettings(picture.type);
    core.setChartSettings(picture.type, picture.settings);
    const bool drawn = drawWindow(emulator, picture, error);
    core.setChartSettings(picture.type, previous);
    return drawn;
}

bool SaveChart(Emulator& emulator, ChartPicture& picture, const QString& path, std::string* error) {
    if (!DrawChart(emulator, picture, error)) return false;
    if (picture.image.save(path, "PNG")) return true;
    *error = "cannot write " + path.toStdString();
    return false;
}

std::string LoadSource(Emulator& emulator, const QString& source, std::size_t holdBack, std::string* error) {
    DataCore& core = emulator.data();
    std::string path = source.toStdString();
    std::string name;
    if (QFileInfo::exists(source)) {
        name = data::CsvPriceReader::nameFromPath(path);
    } else {
        name = path;
        // Without a replay a built-in is taken as it is, loaded on first use.
        if (holdBack == 0 && core.instrument(name)) return name;
        path = DataCore::builtInPath(name);
        if (path.empty()) {
            *error = "no file or built-in instrument " + name;
            return std::string();
        }
    }
    InstrumentOptions options;
    options.name = name;
    options.holdBack = holdBack;
    const data::Instrument* instrument = core.loadInstrument(path, options, error);
    return instrument ? instrument->name() : std::string();
}

int RunChartCommand(const QStringList& args, const char* command, const char* usageText, bool replay) {
    auto usage = [&] {
        std::fprintf(stderr, "usage: pfhost %s %s\n", command, usageText);
        return 2;
    };
    const QStringList sources = options(args, "--data");
    const QString out = option(args, "--out");
    ChartPicture picture;
    if (sources.isEmpty() || out.isEmpty() ||
        !data::parseChartType(option(args, "--type").toStdString(), &picture.type))
        return usage();
    bool ok = true;
    picture.settings.box = option(args, "--box", "0").toDouble(&ok);
    if (!ok) return usage();
    picture.settings.reversal = option(args, "--reversal", "0").toInt(&ok);
    if (!ok) return usage();
    if (!replay && args.contains(QLatin1String("--replay"))) return usage();
    const long count = option(args, "--replay", "0").toLong(&ok);
    if (!ok || count < 0) return usage();
    picture.replay = std::size_t(count);
    const QRegularExpressionMatch size =
        QRegularExpression("^(\\d+)x(\\d+)$").match(option(args, "--size", "1200x800"));
    if (!size.hasMatch()) return usage();
    picture.size = QSize(size.captured(1).toInt(), size.captured(2).toInt());
    if (picture.size.width() < kMinSide || picture.size.height() < kMinSide || picture.size.width() > kMaxSide ||
        picture.size.height() > kMaxSide) {
        std::fprintf(stderr, "pfhost %s: the size must be from %dx%d to %dx%d\n", command, kMinSide, kMinSide,
                     kMaxSide, kMaxSide);
        return 2;
    }

    Emulator emulator(emulatorOptions(args));
    if (!startModule(emulator, false)) return 1;
    std::string error;
    for (const QString& source : sources) {
        const std::string name = LoadSource(emulator, source, picture.replay, &error);
        if (name.empty()) {
            std::fprintf(stderr, "pfhost %s: %s\n", command, error.c_str());
            return 1;
        }
        picture.instruments.push_back(name);
    }
    if (!SaveChart(emulator, picture, out, &error)) {
        std::fprintf(stderr, "pfhost %s: %s\n", command, error.c_str());
        return 1;
    }
    std::printf("%s: %s\n", qPrintable(out), qPrintable(picture.Describe()));
    return 0;
}

}  // namespace cli
}  // namespace host
