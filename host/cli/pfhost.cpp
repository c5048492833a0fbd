// pfhost: the emulated terminal on the command line.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <unistd.h>
#include <cstdio>
#include <cstring>

#include "host/DealingService.h"
#include "host/cli/Commands.h"
#include "host/data/CsvPriceReader.h"

namespace host {
namespace cli {

std::vector<Command>& commands() {
    static std::vector<Command> list;
    return list;
}

bool addCommand(const Command& command) {
    commands().push_back(command);
    return true;
}

QString option(const QStringList& args, const QString& name, const QString& fallback) {
    const int i = args.indexOf(name);
    return (i >= 0 && i + 1 < args.size()) ? args.at(i + 1) : fallback;
}

QStringList options(const QStringList& args, const QString& name) {
    QStringList values;
    for (int i = 0; i + 1 < args.size(); ++i)
        if (args.at(i) == name) values << args.at(++i);
    return values;
}

bool hasFlag(const QStringList& args, const QString& name) { return args.contains(name); }

}  // namespace cli
}  // namespace host

// The offscreen platform says so whenever a window asks for something it does without
// (masks, raising, size hints); the emulator's windows never need those.
static QtMessageHandler g_standardHandler = nullptr;

static void quietPlatformNotes(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type == QtWarningMsg && text.startsWith(QLatin1String("This plugin does not support"))) return;
    if (g_standardHandler) g_standardHandler(type, context, text);
}

static int usage() {
    std::fprintf(stderr, "usage: pfhost COMMAND [options]\n\ncommands:\n");
    for (const host::cli::Command& c : host::cli::commands())
        std::fprintf(stderr, "  %s %s\n      %s\n", c.name, c.usage, c.help);
    return 2;
}

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        // Qt wants a private runtime folder; give it one rather than a warning on every run.
        const QByteArray dir = QDir::tempPath().toLocal8Bit() + "/pfhost-runtime-" + QByteArray::number(getuid());
        QDir().mkpath(QString::fromLocal8Bit(dir));
        QFile::setPermissions(QString::fromLocal8Bit(dir), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", dir);
    }
    g_standardHandler = qInstallMessageHandler(quietPlatformNotes);
    QApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) return usage();
    for (const host::cli::Command& c : host::cli::commands())
        if (args.first() == QLatin1String(c.name)) return c.run(args.mid(1));
    return usage();
}

host::EmulatorOptions host::cli::emulatorOptions(const QStringList& args) {
    EmulatorOptions o;
    o.modulePath = option(args, "--module").toStdString();
    o.workFolder = option(args, "--work").toStdString();
    o.logFile = option(args, "--log").toStdString();
    o.logToStderr = hasFlag(args, "--log-stderr");
    if (args.contains(QLatin1String("--language"))) o.languages.clear();
    for (int i = 0; i + 1 < args.size(); ++i)
        if (args.at(i) == QLatin1String("--language")) o.languages.push_back(args.at(i + 1).toStdString());
    return o;
}

bool host::cli::startModule(Emulator& emulator, bool verbose, int accounts) {
    std::string error;
    if (!emulator.loadModule(&error)) {
        std::fprintf(stderr, "pfhost: %s\n", error.c_str());
        return false;
    }
    // The terminal on the command line has a dealing with a trading account, as a terminal
    // connected to a broker would, so the start-up shows the module's account fetch.
    emulator.dealing().addDemoAccounts(accounts);
    if (verbose)
        std::printf("The emulated terminal loaded %s\n\n%s", emulator.options().modulePath.c_str(),
                    describeModuleInfo(emulator.moduleInfo()).c_str());
    emulator.startUp();
    if (verbose) std::printf("\nstart-up exchange:\n%s", emulator.host().journal().dump().c_str());
    return true;
}

void host::cli::reportSkippedRows(const char* command, const data::Instrument& instrument) {
    const std::string note = data::CsvPriceReader::skippedNote(instrument.skippedRows(), instrument.skippedSample());
    if (!note.empty()) std::fprintf(stderr, "pfhost %s: %s: %s\n", command, instrument.source().c_str(), note.c_str());
}
