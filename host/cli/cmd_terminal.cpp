// `pfhost terminal`: the emulated terminal as a desktop application around the module
// (host/terminal/Terminal.h). With --screenshot and --quit it makes a picture of itself and
// ends, for the README and tests. Without --workspace it keeps the user's default workspace
// (Workspace::defaultPath), so that a restart brings the same windows back.
#include <QApplication>
#include <QFileInfo>
#include <QMainWindow>
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "host/DialogAnswerer.h"
#include "host/MainWindowService.h"
#include "host/cli/Commands.h"
#include "host/cli/PaintClock.h"
#include "host/terminal/Terminal.h"
#include "host/terminal/Workspace.h"

namespace {

const char kUsage[] =
    "[FILES.csv...] [--workspace FILE.xml | --no-workspace] [--screenshot FILE.png [--quit]] [--hold-back N] [--speed N] "
    "[--size WxH] [--accounts N] [--answer yes|no] [--language NAME] [--no-examples] "
    "[--window pf|renko|kagi:INSTRUMENT ...] [--replay N] [--journal NUMBERS] [--verbose]";

// Options that take a value; every other word that is not an option is a price file.
const char* const kValued[] = {"--replay", "--journal", "--window", "--workspace", "--screenshot", "--hold-back", "--speed", "--size", "--accounts",
                               "--answer", "--language", "--module", "--work", "--log"};

// `pfhost terminal --help`: the usage and where the workspace is kept.
int help() {
    const QString def = host::terminal::Workspace::defaultPath();
    std::printf("usage: pfhost terminal %s\n\n"
                "The emulated terminal as a desktop application. Its workspace (every chart window with its\n"
                "layout and place, the main window and its panels, the instruments and the options) is\n"
                "restored at start and saved on quit and on File > Save workspace:\n"
                "  --workspace FILE.xml  that file (made on quit when it does not exist yet);\n"
                "  --no-workspace        none: nothing is restored or saved until File > Save workspace as;\n"
                "  otherwise             the default workspace, %s\n"
                "                        ($XDG_CONFIG_HOME/pfhost or ~/.config/pfhost).\n"
                "A workspace file that cannot be read is reported, the terminal starts without it, and the\n"
                "file is not saved over.\n",
                kUsage, def.isEmpty() ? "(none on this system)" : def.toLocal8Bit().constData());
    return 0;
}

int fail(const QString& text) {
    std::fprintf(stderr, "pfhost terminal: %s\n", text.toLocal8Bit().constData());
    return 2;
}

int runTerminal(const QStringList& args) {
    using host::cli::option;
    host::terminal::TerminalOptions options;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args.at(i);
        if (std::find_if(std::begin(kValued), std::end(kValued), [&a](const char* v) { return a == QLatin1String(v); }) !=
            std::end(kValued)) {
            ++i;
        } else if (a.startsWith(QLatin1String("--"))) {
            if (a == QLatin1String("--help")) return help();
            if (a != QLatin1String("--quit") && a != QLatin1String("--no-examples") && a != QLatin1String("--log-stderr") &&
                a != QLatin1String("--no-workspace") && a != QLatin1String("--verbose"))
                return fail(QStringLiteral("unknown option %1\nusage: pfhost terminal %2").arg(a, QLatin1String(kUsage)));
        } else {
            // Kept in the workspace by its full path, so that it is found from anywhere.
            options.files << QFileInfo(a).absoluteFilePath();
        }
    }
    bool ok = true;
    for (const QString& w : host::cli::options(args, "--window")) {
        const int colon = w.indexOf(QLatin1Char(':'));
        host::data::ChartType type;
        if (colon < 1 || colon + 1 >= w.size() || !host::data::parseChartType(w.left(colon).toStdString(), &type))
            return fail(QStringLiteral("--window takes TYPE:INSTRUMENT, e.g. pf:USDCHF"));
        options.windows.push_back({type, w.mid(colon + 1)});
    }
    options.replay = option(args, "--replay", "0").toULong(&ok);
    if (!ok) return fail(QStringLiteral("--replay takes a number of quotes"));
    options.journalFilter = option(args, "--journal");
    options.workspace = option(args, "--workspace");
    const bool noWorkspace = host::cli::hasFlag(args, "--no-workspace");
    if (noWorkspace && !options.workspace.isEmpty()) return fail(QStringLiteral("--workspace and --no-workspace exclude each other"));
    if (options.workspace.isEmpty() && !noWorkspace) options.workspace = host::terminal::Workspace::defaultPath();
    if (!options.workspace.isEmpty()) options.workspace = QFileInfo(options.workspace).absoluteFilePath();
    options.screenshot = option(args, "--screenshot");
    options.quit = host::cli::hasFlag(args, "--quit");
    options.examples = !host::cli::hasFlag(args, "--no-examples");
    options.holdBack = option(args, "--hold-back", "0").toULong(&ok);
    if (!ok) return fail(QStringLiteral("--hold-back takes a number of quotes"));
    options.replaySpeed = option(args, "--speed", "100").toInt(&ok);
    if (!ok || options.replaySpeed < 1) return fail(QStringLiteral("--speed takes quotes per second (1 or more)"));
    const QStringList size = option(args, "--size", "1400x900").split(QLatin1Char('x'));
    const int w = size.value(0).toInt(), h = size.value(1).toInt();
    if (size.size() != 2 || w < 320 || h < 240 || w > 8000 || h > 8000) return fail(QStringLiteral("--size takes WxH"));
    options.size = QSize(w, h);
    options.sizeGiven = args.contains(QStringLiteral("--size"));
    const int accounts = option(args, "--accounts", "2").toInt(&ok);
    if (!ok || accounts < 0 || accounts > 99) return fail(QStringLiteral("--accounts takes 0 to 99"));
    const QString answer = option(args, "--answer");
    if (!answer.isEmpty() && answer != QLatin1String("yes") && answer != QLatin1String("no"))
        return fail(QStringLiteral("--answer takes yes or no"));

    // Both languages are installed; the one selected is the workspace's, unless named here.
    host::EmulatorOptions eo = host::cli::emulatorOptions(args);
    QString language = option(args, "--language");
    if (language.isEmpty() && !options.workspace.isEmpty()) language = host::terminal::Workspace::languageOf(options.workspace);
    eo.languages = {"English", "Chinese (Simplified)"};
    eo.selectedLanguage = language == QLatin1String("Chinese (Simplified)") ? 1 : 0;

    host::Emulator emulator(eo);
    // A person answers the module's questions and print dialogs, unless --answer says how.
    emulator.dialogs().setActive(!answer.isEmpty());
    emulator.dialogs().setReply(answer == QLatin1String("yes") ? host::DialogAnswerer::Reply::Yes
                                                               : host::DialogAnswerer::Reply::No);
    emulator.mainWindow().setOnScreen(true);
    if (!host::cli::startModule(emulator, false, accounts)) return 1;
    int status = 0;
    {
        host::terminal::Terminal terminal(emulator, options);
        // Problems are said on the console as well: a picture taken with --quit leaves no
        // window to read them in.
        // With --verbose every message of the status bar is printed as well (on stdout), for
        // scripts that drive the terminal.
        const bool verbose = host::cli::hasFlag(args, "--verbose");
        QObject::connect(&terminal, &host::terminal::Terminal::messageShown, [verbose](const QString& text, bool problem) {
            if (problem) std::fprintf(stderr, "pfhost terminal: %s\n", text.toLocal8Bit().constData());
            else if (verbose) std::printf("pfhost terminal: %s\n", text.toLocal8Bit().constData());
            if (verbose) std::fflush(stdout);
        });
        if (!options.workspace.isEmpty() && !QFileInfo::exists(options.workspace))
            std::fprintf(stderr, "pfhost terminal: no workspace %s yet; it is made on quit\n",
                         options.workspace.toLocal8Bit().constData());
        terminal.window()->show();
        terminal.start();
        host::cli::ReportFirstPaint(emulator, terminal);
        status = QApplication::exec();
        if (!options.screenshot.isEmpty() && options.quit)
            std::printf("pfhost terminal: screenshot in %s\n", options.screenshot.toLocal8Bit().constData());
    }
    return status;
}

}  // namespace

PF_HOST_COMMAND("terminal", kUsage,
                "the emulated terminal as a desktop application: chart windows, instruments, accounts, "
                "blotter, journal, replay and a workspace saved on quit",
                runTerminal);
