// Saving and loading the layout of a chart window with 20 indicators (20 areas of USD/CHF
// and TTRC) through the real entry points: the emulator loads libPFChartModule.so.1 and
// sends 3021 (save into a fresh node) and 3020 (load into the same window, which replaces
// what it shows and asks the data core for all 20 data objects again). And the undo of an
// area closed on a window with 10 indicators (3140: the area is rebuilt from its record).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/Emulator.h"
#include "host/UndoStack.h"
#include "host/WorkDataStore.h"

namespace {

struct Window {
    QTemporaryDir dir;
    std::unique_ptr<host::Emulator> emulator;
    void* widget = nullptr;
    void* iface = nullptr;
    void* document = nullptr;
    void* root = nullptr;

    explicit Window(int areas = 20) {
        host::EmulatorOptions options;
        options.workFolder = dir.path().toStdString();
        emulator.reset(new host::Emulator(options));
        std::string error;
        if (!emulator->loadModule(&error)) {
            std::fprintf(stderr, "bench_layout: %s\n", error.c_str());
            std::exit(1);
        }
        emulator->startUp();
        widget = emulator->charts().create(host::data::ChartType::PointAndFigure);
        iface = emulator->core().componentObject("Points and Figures");
        for (int i = 0; i < areas; ++i) emulator->charts().drop(widget, {i % 2 ? "TTRC" : "USDCHF"});
        document = emulator->workData().open(dir.filePath(QStringLiteral("layout.xml")));
        root = emulator->workData().createChild(document, QStringLiteral("Layout"));
    }
    ~Window() { emulator->charts().destroyAll(); }
    void* FreshNode() { return emulator->workData().createChild(root, QStringLiteral("Window")); }
    int Send(unsigned int message, void* node) {
        coreSzNode record;
        emulator->workData().describe(node, &record);
        return emulator->host().send(iface, message, reinterpret_cast<std::intptr_t>(widget),
                                     reinterpret_cast<std::intptr_t>(&record));
    }
};

void BM_SaveLayout(benchmark::State& state) {
    Window w;
    for (auto _ : state) {
        state.PauseTiming();
        void* node = w.FreshNode();
        w.emulator->host().journal().clear();
        state.ResumeTiming();
        w.Send(MSG_SAVE_CHART, node);
    }
}

void BM_LoadLayout(benchmark::State& state) {
    Window w;
    void* node = w.FreshNode();
    w.Send(MSG_SAVE_CHART, node);
    for (auto _ : state) {
        state.PauseTiming();
        w.emulator->host().journal().clear();
        state.ResumeTiming();
        w.Send(MSG_LOAD_CHART, node);
    }
}

void BM_UndoAreaClose(benchmark::State& state) {
    Window w(10);
    for (auto _ : state) {
        state.PauseTiming();
        w.emulator->host().journal().clear();
        w.emulator->charts().closeArea(w.widget, 4);
        state.ResumeTiming();
        w.emulator->undo().undo();
    }
}

}  // namespace

BENCHMARK(BM_UndoAreaClose)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveLayout)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadLayout)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
