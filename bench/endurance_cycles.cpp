// Endurance of the module in a terminal that opens and closes chart windows all day, through
// the real entry points. One cycle: a new Point and Figure window (5003), an instrument
// dropped on it (5007), 100 quotes replayed into it (3009), a zoom (an undo step), its
// layout saved (3021) and loaded into a second window (5003, 3020), the zoom undone (3140),
// both windows destroyed (5004). The instrument is loaded from its price file at the start
// of each cycle and forgotten at the end, so the host holds nothing from one cycle to the
// next.
//
//   endurance_cycles [cycles=10000] [warm-up=1000]
//
// Qt's style keeps pictures of the scroll bars, sliders and buttons it draws in its
// process-wide pixmap cache (up to 10 MB), under keys that every new window's controls make
// anew, and it keeps the keys' bookkeeping beyond the pictures. That growth is the toolkit's,
// not the module's: the program runs with the cache switched off, so that what is measured
// is what the module and the emulated terminal hold. PF_QT_PIXMAP_CACHE=1 leaves it on.
//
// Prints resident memory and heap in use after the warm-up and at the end, and fails (exit
// 1) when a cycle failed or, over 1,000 cycles or more after the warm-up, resident memory
// grew by 2 MB or more. Shorter runs (the test of the sanitizer build, whose allocator keeps
// freed blocks in quarantine) only report the growth. Under the leak sanitizer (the build
// with -DPF_SANITIZE=ON) leaks are reported at exit.
#include <QApplication>
#include <QPixmapCache>
#include <QList>
#include <QToolButton>
#include <cstdio>
#include <cstdlib>

#include "bench/BenchHost.h"
#include "host/ChartLayouts.h"
#include "host/UndoStack.h"

namespace {

bool Cycle(bench::Terminal& t, const std::string& prices, const QString& layout) {
    host::InstrumentOptions options;
    options.name = "CYCLE";
    options.holdBack = 100;
    if (!t.data().loadInstrument(prices, options)) return false;
    host::ChartWindows& charts = t.charts();
    void* w = charts.create(host::data::ChartType::PointAndFigure);
    bool ok = w && charts.drop(w, {"CYCLE"}) == 0;
    ok = ok && t.data().replay("CYCLE", 100) == 100;
    charts.grab(w, QSize(800, 600));
    const QList<QToolButton*> buttons = charts.toolButtons(w);
    if (!buttons.isEmpty()) buttons[0]->click();  // Zoom In: an undo step
    ok = ok && t.emulator->layouts().save(w, layout);
    void* again = t.emulator->layouts().load(host::data::ChartType::PointAndFigure, layout);
    ok = ok && again;
    if (again) charts.grab(again, QSize(800, 600));
    ok = ok && t.emulator->undo().undo().answer == 0;
    charts.destroyAll();
    t.data().removeInstrument("CYCLE");
    t.forget();
    QApplication::processEvents();
    return ok;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (!qEnvironmentVariableIsSet("PF_QT_PIXMAP_CACHE")) QPixmapCache::setCacheLimit(0);
    const long cycles = argc > 1 ? std::atol(argv[1]) : 10000;
    const long warmUp = argc > 2 ? std::atol(argv[2]) : std::min(1000L, cycles / 10);
    long failures = 0;
    {
        bench::Terminal t;
        const std::string prices = t.path("cycle.csv");
        bench::writeWalk(prices, 1100);
        const QString layout = QString::fromStdString(t.path("layout.xml"));
        long rss0 = 0, heap0 = 0;
        for (long i = 0; i < cycles; ++i) {
            if (!Cycle(t, prices, layout)) ++failures;
            if (i + 1 == warmUp) {
                malloc_trim(0);
                rss0 = bench::residentBytes();
                heap0 = bench::heapInUse();
            }
            if ((i + 1) % 1000 == 0)
                std::printf("cycle %ld: resident %.2f MB, heap in use %.2f MB\n", i + 1,
                            bench::residentBytes() / 1048576.0, bench::heapInUse() / 1048576.0);
        }
        malloc_trim(0);
        const double rssGrowth = (bench::residentBytes() - rss0) / 1048576.0;
        const double heapGrowth = (bench::heapInUse() - heap0) / 1048576.0;
        std::printf("%ld cycles (%ld failed); after cycle %ld: resident +%.3f MB, heap in use +%.3f MB (goal: under 2 MB)\n",
                    cycles, failures, warmUp, rssGrowth, heapGrowth);
        std::fflush(stdout);
        const bool judged = cycles - warmUp >= 1000;
        if ((judged && rssGrowth >= 2.0) || failures) return 1;
    }
    return 0;
}
