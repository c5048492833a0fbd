// Endurance of the module in a terminal that opens and closes chart windows all day, through
// the real entry points. One cycle: a new Point and Figure window (5003), an instrument
// dropped on it (5007), 100 quotes replayed into it (3009); a line study placed with the
// mouse (3500, 4500, 4510), dragged as a whole (an undo step) and deleted with the Delete key
// (4501); the window's property page opened with a double click (10052) and a setting
// applied (10054); a zoom (an undo step), its layout saved (3021) and loaded into a second
// window (5003, 3020); every step on the terminal's undo stack undone (3140), the zoom first;
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
#include <QMouseEvent>
#include <QToolButton>
#include <cstdio>
#include <cstdlib>

#include "bench/BenchHost.h"
#include "host/ChartLayouts.h"
#include "host/LineStudies.h"
#include "host/PropertyService.h"
#include "host/StudyGestures.h"
#include "host/UndoStack.h"

namespace {

// Sends one mouse event to the chart widget.
void Mouse(QWidget* chart, QEvent::Type type, const QPoint& at, Qt::MouseButtons buttons) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, chart->mapToGlobal(at), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(chart, &event);
}

// A line study placed in the middle of the window's only area, dragged as a whole by its
// middle and deleted with the Delete key. False when a step did not take.
bool StudyPlacedDraggedDeleted(bench::Terminal& t, void* w) {
    QWidget* chart = t.charts().chartWidget(w);
    if (!chart) return false;
    const QPoint a(chart->width() * 3 / 10, chart->height() / 2), b(chart->width() * 6 / 10, chart->height() * 2 / 5);
    std::int32_t id = 0;
    std::string error;
    if (!host::PlaceStudyAt(*t.emulator, w, "Line", {a, b}, &id, &error)) return false;
    const host::LineStudies& studies = t.emulator->studies();
    const std::vector<lsPointShape> placed = studies.study(id)->in;
    const QPoint middle = (a + b) / 2, to = middle + QPoint(-40, 30);
    Mouse(chart, QEvent::MouseButtonPress, middle, Qt::LeftButton);
    for (int s = 0; s <= 4; ++s) Mouse(chart, QEvent::MouseMove, middle + (to - middle) * s / 4, Qt::LeftButton);
    Mouse(chart, QEvent::MouseButtonRelease, to, Qt::NoButton);
    const host::LineStudies::Study* study = studies.study(id);
    const bool moved = study && study->in.size() == placed.size() && study->in[0].m_xTime != placed[0].m_xTime;
    t.charts().pressKey(w, Qt::Key_Delete);
    return moved && !studies.study(id);
}

// The window's property page opened with a double click on empty chart space, a setting
// applied and the dialog closed.
bool PropertyApplied(bench::Terminal& t, void* w, long cycle) {
    host::PropertyService& properties = t.emulator->properties();
    std::string error;
    const bool ok = properties.setAndApply(properties.open(w, &error), QStringLiteral("Free space positions"),
                                           cycle % 2 ? QStringLiteral("8") : QStringLiteral("5"), &error);
    properties.closeAll();
    return ok;
}

bool Cycle(bench::Terminal& t, const std::string& prices, const QString& layout, long cycle) {
    host::InstrumentOptions options;
    options.name = "CYCLE";
    options.holdBack = 100;
    if (!t.data().loadInstrument(prices, options)) return false;
    host::ChartWindows& charts = t.charts();
    void* w = charts.create(host::data::ChartType::PointAndFigure);
    bool ok = w && charts.drop(w, {"CYCLE"}) == 0;
    ok = ok && t.data().replay("CYCLE", 100) == 100;
    charts.grab(w, QSize(800, 600));
    ok = ok && StudyPlacedDraggedDeleted(t, w);
    ok = ok && PropertyApplied(t, w, cycle);
    const QList<QToolButton*> buttons = charts.toolButtons(w);
    if (!buttons.isEmpty()) buttons[0]->click();  // Zoom In: an undo step
    ok = ok && t.emulator->layouts().save(w, layout);
    void* again = t.emulator->layouts().load(host::data::ChartType::PointAndFigure, layout);
    ok = ok && again;
    if (again) charts.grab(again, QSize(800, 600));
    // Every step undone, newest first: the zoom, then the study's deletion (it comes back)
    // and its move.
    ok = ok && t.emulator->undo().undo().answer == 0;
    for (int i = 0; i < 4 && !t.emulator->undo().records().empty(); ++i) ok = t.emulator->undo().undo().answer == 0 && ok;
    ok = ok && t.emulator->undo().records().empty();
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
            if (!Cycle(t, prices, layout, i)) ++failures;
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
