// Subcommands of `pfhost`. Each lives in its own file and registers itself with
// PF_HOST_COMMAND, so adding one never touches the others.
#pragma once

#include <QStringList>
#include <vector>

namespace host {
namespace cli {

struct Command {
    const char* name;
    const char* usage;  // one line: options after the command name
    const char* help;   // one line: what it does
    int (*run)(const QStringList& args);  // arguments after the command name
};

std::vector<Command>& commands();
bool addCommand(const Command& command);

// Option helpers: "--name value".
QString option(const QStringList& args, const QString& name, const QString& fallback = QString());
// Every value of an option that may be repeated, in order.
QStringList options(const QStringList& args, const QString& name);
bool hasFlag(const QStringList& args, const QString& name);

}  // namespace cli
}  // namespace host

#define PF_HOST_COMMAND_CAT2(a, b) a##b
#define PF_HOST_COMMAND_CAT(a, b) PF_HOST_COMMAND_CAT2(a, b)
#define PF_HOST_COMMAND(name, usage, help, fn)                                        \
    static const bool PF_HOST_COMMAND_CAT(pf_host_command_, __LINE__) =               \
        ::host::cli::addCommand(::host::cli::Command{name, usage, help, fn})

#include "host/Emulator.h"

namespace host {
namespace data {
class Instrument;
}
namespace cli {
// --module PATH, --work DIR, --language NAME (repeatable; the first is selected), --log FILE
EmulatorOptions emulatorOptions(const QStringList& args);
// Loads the module as the terminal does and runs the start-up messages; with `verbose`,
// prints its information record and the exchange. The terminal has `accounts` trading
// accounts (DealingService::addDemoAccounts). False (with the reason on stderr) when it
// cannot load.
bool startModule(Emulator& emulator, bool verbose = true, int accounts = 1);
// Says on stderr, once, how many rows of an instrument's price file were left out and which
// ("pfhost records: FILE: 2 rows skipped (line 3: bad close, line 7: bad date)"); nothing
// when none were.
void reportSkippedRows(const char* command, const data::Instrument& instrument);
}  // namespace cli
}  // namespace host
