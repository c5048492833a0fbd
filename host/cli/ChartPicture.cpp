#include "host/cli/ChartPicture.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QWidget>
#include <algorithm>
#include <cstdio>

#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/StudyGestures.h"
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
// Accounts `pfhost chart --accounts` sets up at most.
const int kMaxAccounts = 99;

QString describeSettings(data::ChartType type, const data::ChartSettings& s) {
    QString text = QStringLiteral("box %1").arg(s.box, 0, 'g', 10);
    // Renko always reverses after two bricks, so its reversal says nothing.
    if (type == data::ChartType::Kagi && s.percent > 0)
        text += QStringLiteral(", reversal %1 %").arg(s.percent);
    else if (type != data::ChartType::Renko)
        text += QStringLiteral(", reversal %1").arg(s.reversal);
    return text;
}

// A deal or an order from the window's context menu: Trade, then the account's submenu
// when there are several accounts, then the deal or order entry.
bool trade(Emulator& emulator, void* widget, const ChartPicture& picture, const ChartPicture::Trade& t,
           std::string* error) {
    const char* keys[] = {"PF0019", t.order ? "Tr0131SetOrdr" : "Tr0038Deal"};
    QStringList path;
    for (const char* key : keys) {
        path << emulator.moduleText(key);
        if (path.last().isEmpty()) {
            *error = std::string("the module gave no text for ") + key;
            return false;
        }
    }
    if (picture.accounts > 1) path.insert(1, DealingService::demoAccountName(t.account));
    QWidget* chart = emulator.charts().chartWidget(widget);
    const QPoint at = !picture.tradeAt.isNull() || !chart ? picture.tradeAt : chart->rect().center();
    if (emulator.charts().chooseFromContextMenu(widget, at, path, error)) return true;
    *error = "the context menu: " + *error;
    return false;
}

// What happens to a drawn window before it closes: its layout saved, printed, traded from.
bool afterDrawing(Emulator& emulator, ChartPicture& picture, void* widget, std::string* error) {
    ChartWindows& charts = emulator.charts();
    QString why;
    if (!picture.saveLayout.isEmpty() && !emulator.layouts().save(widget, picture.saveLayout, &why)) {
        *error = "the layout was not saved: " + why.toStdString();
        return false;
    }
    if (!picture.printFile.isEmpty()) {
        DialogAnswerer& dialogs = emulator.dialogs();
        dialogs.setPrinting(DialogAnswerer::Printing::Accept, picture.printFile);
        const std::size_t before = dialogs.answers().size();
        const int answer = charts.print(widget);
        bool asked = false;
        for (std::size_t i = before; i < dialogs.answers().size(); ++i)
            asked = asked || dialogs.answers()[i].kind == DialogAnswerer::Answer::Print;
        if (answer != 0 || !asked || !QFileInfo(picture.printFile).isFile()) {
            *error = answer != 0 ? "the module answered 5012 with " + std::to_string(answer)
                                 : asked ? "the module printed nothing" : "the module opened no print dialog";
            return false;
        }
    }
    for (const ChartPicture::Trade& t : picture.trades)
        if (!trade(emulator, widget, picture, t, error)) return false;
    return true;
}

// The window's part of DrawChart: create (or load), drop, replay, grab, the steps after
// drawing, destroy.
bool drawWindow(Emulator& emulator, ChartPicture& picture, std::string* error) {
    DataCore& core = emulator.data();
    ChartWindows& charts = emulator.charts();
    void* widget = nullptr;
    if (!picture.loadLayout.isEmpty()) {
        QString why;
        widget = emulator.layouts().load(picture.type, picture.loadLayout, &why);
        if (!widget) {
            *error = why.toStdString();
            return false;
        }
    } else {
        widget = charts.create(picture.type);
        if (!widget) {
            *error = "the module made no " + std::string(data::chartTypeName(picture.type)) + " chart window";
            return false;
        }
    }
    // A loaded window has its instruments already: the price sources only feed the replay.
    const std::vector<std::string> drops = picture.loadLayout.isEmpty() ? picture.instruments : std::vector<std::string>();
    for (const std::string& name : drops) {
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
    if (!PlayActions(emulator, widget, picture.actions, error)) {
        charts.destroy(widget);
        return false;
    }
    for (const ChartPicture::Study& study : picture.studies) {
        std::vector<StudyPoint> points;
        for (const auto& p : study.points) points.push_back(StudyPoint{p.first, p.second});
        if (!PlaceStudy(emulator, widget, study.name, points, nullptr, error)) {
            *error = "--study " + study.name + ": " + *error;
            charts.destroy(widget);
            return false;
        }
    }
    if (!picture.properties.empty() && !SetProperties(emulator, widget, picture, error)) {
        charts.destroy(widget);
        return false;
    }

    picture.image = charts.grab(widget, picture.size);
    picture.title = charts.title(widget);
    if (picture.image.isNull()) {
        *error = "the chart window could not be grabbed";
        charts.destroy(widget);
        return false;
    }
    const bool done = afterDrawing(emulator, picture, widget, error);
    charts.destroy(widget);
    return done;
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
    if (!loadLayout.isEmpty()) text += QStringLiteral(", loaded from %1").arg(loadLayout);
    if (replay > 0) text += QStringLiteral("; %1 quotes replayed, %2 updates").arg(replayed).arg(notices);
    if (!saveLayout.isEmpty()) text += QStringLiteral("; layout saved to %1").arg(saveLayout);
    if (!printFile.isEmpty()) text += QStringLiteral("; printed to %1").arg(printFile);
    if (!trades.empty()) text += QStringLiteral("; %1 trades placed").arg(trades.size());
    if (!actions.empty()) text += QStringLiteral("; %1 actions played").arg(actions.size());
    if (!studies.empty()) text += QStringLiteral("; %1 line studies placed").arg(studies.size());
    if (!properties.empty()) text += QStringLiteral("; %1 properties applied").arg(properties.size());
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

namespace {

// The options `pfhost chart` takes beyond render's; false for a malformed one.
bool parseExtras(const QStringList& args, ChartPicture& picture) {
    bool ok = true;
    const long count = option(args, "--replay", "0").toLong(&ok);
    if (!ok || count < 0) return false;
    picture.replay = std::size_t(count);
    picture.loadLayout = option(args, "--load-layout");
    picture.saveLayout = option(args, "--save-layout");
    picture.printFile = option(args, "--print");
    picture.accounts = option(args, "--accounts", "1").toInt(&ok);
    if (!ok || picture.accounts < 0 || picture.accounts > kMaxAccounts) return false;
    for (const QString& t : options(args, "--trade")) {
        const QRegularExpressionMatch m = QRegularExpression("^(deal|order)(?::(\\d+))?$").match(t);
        if (!m.hasMatch()) return false;
        const int account = m.captured(2).isEmpty() ? 1 : m.captured(2).toInt();
        if (account < 1 || account > std::max(picture.accounts, 1)) return false;
        picture.trades.push_back(ChartPicture::Trade{m.captured(1) == QLatin1String("order"), account});
    }
    if (args.contains(QLatin1String("--at"))) {
        const QRegularExpressionMatch m = QRegularExpression("^(\\d+),(\\d+)$").match(option(args, "--at"));
        if (!m.hasMatch()) return false;
        picture.tradeAt = QPoint(m.captured(1).toInt(), m.captured(2).toInt());
    }
    if (!ParseActions(args, &picture.actions)) return false;
    for (const QString& text : options(args, "--study")) {
        ChartPicture::Study study;
        std::vector<StudyPoint> points;
        std::vector<StudyPoint> clicks;
        std::string why;
        if (!ParseStudy(text.toStdString(), &study.name, &points)) return false;
        if (!StudyClicks(study.name, points, &clicks, &why)) {
            std::fprintf(stderr, "--study %s: %s\n", qPrintable(text), why.c_str());
            return false;
        }
        for (const StudyPoint& p : points) study.points.push_back(std::make_pair(p.time, p.price));
        picture.studies.push_back(study);
    }
    for (const QString& p : options(args, "--property")) {
        const int eq = p.indexOf(QLatin1Char('='));
        if (eq < 1) return false;
        picture.properties.emplace_back(p.left(eq), p.mid(eq + 1));
    }
    const QString answer = option(args, "--answer", "no");
    return answer == QLatin1String("yes") || answer == QLatin1String("no");
}

const char* const kExtraOptions[] = {"--replay", "--load-layout", "--save-layout", "--print",       "--accounts",
                                     "--trade",  "--at",          "--answer",      "--blotter",     "--zoom",
                                     "--scroll", "--close-area",  "--delete-line", "--undo",        "--undo-list",
                                     "--study", "--property", "--skin"};

}  // namespace

int RunChartCommand(const QStringList& args, const char* command, const char* usageText, bool all) {
    auto usage = [&] {
        std::fprintf(stderr, "usage: pfhost %s %s\n", command, usageText);
        return 2;
    };
    const QStringList sources = options(args, "--data");
    const QString out = option(args, "--out");
    ChartPicture picture;
    if (!all)
        for (const char* name : kExtraOptions)
            if (args.contains(QLatin1String(name))) return usage();
    if (!parseExtras(args, picture)) return usage();
    // A loaded layout brings its instruments and, unless --type says otherwise, its type.
    const bool typed = args.contains(QLatin1String("--type"));
    if ((sources.isEmpty() && picture.loadLayout.isEmpty()) || out.isEmpty() ||
        (typed && !data::parseChartType(option(args, "--type").toStdString(), &picture.type)) ||
        (!typed && picture.loadLayout.isEmpty()))
        return usage();
    bool ok = true;
    picture.settings.box = option(args, "--box", "0").toDouble(&ok);
    if (!ok) return usage();
    picture.settings.reversal = option(args, "--reversal", "0").toInt(&ok);
    if (!ok) return usage();
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
    emulator.dialogs().setReply(option(args, "--answer") == QLatin1String("yes") ? DialogAnswerer::Reply::Yes
                                                                                 : DialogAnswerer::Reply::No);
    if (!startModule(emulator, false, picture.accounts)) return 1;
    // Skins are loaded in the order given, before the window is made, as a terminal started
    // with a skin does; the last one read is the look.
    for (const QString& skin : options(args, "--skin")) {
        if (emulator.loadSkin(QFileInfo(skin).absoluteFilePath()) != 0) {
            std::fprintf(stderr, "pfhost %s: the module read no skin from %s\n", command, qPrintable(skin));
            return 1;
        }
    }
    std::string error;
    QString why;
    if (!typed && !emulator.layouts().typeOf(picture.loadLayout, &picture.type, &why)) {
        std::fprintf(stderr, "pfhost %s: %s\n", command, qPrintable(why));
        return 1;
    }
    for (const QString& source : sources) {
        const std::string name = LoadSource(emulator, source, picture.replay, &error);
        if (name.empty()) {
            std::fprintf(stderr, "pfhost %s: %s\n", command, error.c_str());
            return 1;
        }
        if (const data::Instrument* loaded = emulator.data().loaded(name)) reportSkippedRows(command, *loaded);
        picture.instruments.push_back(name);
    }
    const bool saved = SaveChart(emulator, picture, out, &error);
    if (hasFlag(args, "--blotter")) {
        const std::string blotter = emulator.dealing().describeBlotter();
        std::printf("blotter: %zu trades\n%s", emulator.dealing().blotter().size(), blotter.c_str());
    }
    if (hasFlag(args, "--undo-list")) std::printf("%s", DescribeUndoStack(emulator).c_str());
    if (!saved) {
        std::fprintf(stderr, "pfhost %s: %s\n", command, error.c_str());
        return 1;
    }
    std::printf("%s: %s\n", qPrintable(out), qPrintable(picture.Describe()));
    return 0;
}

}  // namespace cli
}  // namespace host
