// What the benchmarks that go through the module's entry points share: an emulated terminal
// with the real libPFChartModule.so.1 loaded (dlopen) and started, price files made to
// measure, and the process's memory figures.
#pragma once

#include <QApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <string>
#include <unistd.h>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/UndoStack.h"

namespace bench {

// The emulated terminal, started (3004, 3007, 3066), its work folder a temporary one.
struct Terminal {
    QTemporaryDir dir;
    std::unique_ptr<host::Emulator> emulator;

    Terminal() {
        host::EmulatorOptions options;
        options.workFolder = dir.path().toStdString();
        emulator.reset(new host::Emulator(options));
        std::string error;
        if (!emulator->loadModule(&error)) {
            std::fprintf(stderr, "benchmark: %s\n", error.c_str());
            std::exit(1);
        }
        emulator->startUp();
    }
    ~Terminal() { emulator->charts().destroyAll(); }
    host::ChartWindows& charts() { return emulator->charts(); }
    host::DataCore& data() { return emulator->data(); }
    // The journal, the data core's notices, the records of undo replies and destroyed
    // windows and the line-study provider's studies and lists keep everything heard; a long
    // run clears them once its windows are gone.
    void forget() {
        emulator->studies().forgetStudies();
        emulator->host().journal().clear();
        emulator->data().clearNotices();
        emulator->undo().forgetReplies();
        emulator->charts().forgetDestroyed();
    }
    std::string path(const char* name) const { return dir.filePath(QString::fromLatin1(name)).toStdString(); }
};

// A price file of `count` closes, 10 minutes apart from 2000 on (two million of them still end
// before the 32-bit times run out in 2038), alternating between 1.0000 and 1.0040: with box
// 0.001 and reversal 3 every quote starts a new Point and Figure column.
inline void writeZigZag(const std::string& path, long count) {
    std::ofstream out(path);
    out << "time,close\n";
    for (long i = 0; i < count; ++i) out << 946684800L + 600L * i << (i % 2 ? ",1.0040\n" : ",1.0000\n");
}

// A random walk of `count` closes, 30 minutes apart, from 1.5 in steps of up to 0.0020.
inline void writeWalk(const std::string& path, long count, unsigned seed = 1) {
    std::ofstream out(path);
    out << "time,close\n";
    long ticks = 15000;
    for (long i = 0; i < count; ++i) {
        seed = seed * 1103515245u + 12345u;
        ticks += long((seed >> 16) % 41) - 20;
        if (ticks < 5000) ticks = 5000;
        char line[64];
        std::snprintf(line, sizeof line, "%ld,%ld.%04ld\n", 946684800L + 1800L * i, ticks / 10000, ticks % 10000);
        out << line;
    }
}

// Resident memory of the process, bytes.
inline long residentBytes() {
    long pages = 0, resident = 0;
    std::FILE* f = std::fopen("/proc/self/statm", "r");
    if (!f) return 0;
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
    return resident * sysconf(_SC_PAGESIZE);
}

// Bytes the C heap has handed out and not had back (small blocks and mapped ones).
inline long heapInUse() {
    const struct mallinfo2 m = mallinfo2();
    return long(m.uordblks + m.hblkhd);
}

}  // namespace bench
