// Twenty chart windows of USD/CHF open on a shown main window, with nothing new arriving:
// each chart type interface's 1000 ms timer repaints its windows. The event loop runs for
// PF_IDLE_SECONDS (default 30) and the process's CPU time over that span is taken as a
// share of one core. Goal: under 2 %. The paints the windows received are counted, so a
// figure from windows that never painted cannot pass for a good one.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QMainWindow>
#include <QMdiArea>
#include <QTimer>
#include <ctime>

#include "bench/BenchHost.h"
#include "host/MainWindowService.h"

namespace {

struct PaintCounter : QObject {
    long paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }
};

double ProcessSeconds() {
    timespec ts;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
}

void BM_IdleWindows(benchmark::State& state) {
    const int windows = int(state.range(0));
    const int seconds = qEnvironmentVariableIsEmpty("PF_IDLE_SECONDS") ? 30 : qEnvironmentVariableIntValue("PF_IDLE_SECONDS");
    bench::Terminal t;
    QMainWindow* main = t.emulator->mainWindow().window();
    main->setAttribute(Qt::WA_DontShowOnScreen, false);
    main->resize(1600, 1200);
    main->show();
    PaintCounter counter;
    for (int i = 0; i < windows; ++i) {
        void* w = t.charts().create(host::data::ChartType(i % 3));
        t.charts().drop(w, {"USDCHF"});
        t.charts().chartWidget(w)->installEventFilter(&counter);
    }
    t.emulator->mainWindow().mdiArea()->tileSubWindows();
    QApplication::processEvents();
    t.forget();
    double share = 0;
    for (auto _ : state) {
        counter.paints = 0;
        const double cpu0 = ProcessSeconds();
        QEventLoop loop;
        QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
        loop.exec();
        share = (ProcessSeconds() - cpu0) / seconds;
    }
    state.counters["cpu_%"] = share * 100.0;
    state.counters["paints"] = double(counter.paints);
    state.counters["seconds"] = seconds;
}

}  // namespace

BENCHMARK(BM_IdleWindows)->Arg(20)->Iterations(1)->Unit(benchmark::kSecond);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
