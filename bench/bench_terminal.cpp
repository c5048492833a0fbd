// The desktop terminal (pfhost terminal) with the real module loaded through dlopen:
//   - start to first paint: the emulator and the terminal made, the example instruments read,
//     the demo workspace's three windows restored, until every window has painted;
//   - the same as a person meets it, a process of its own: `pfhost terminal --workspace
//     <demo workspace> --screenshot out.png --quit` timed from just before its exec to the
//     moment it reports every window painted (PFHOST_PAINT_CLOCK) and to its exit (the
//     screenshot waits 300 ms after start-up, then the workspace is saved on quit);
//   - responsiveness during a replay at 1,000 quotes a second into six chart windows (the
//     three chart types over two instruments): how late a 5 ms timer of the window's event
//     loop fires, worst and mean, over two seconds. The goal is under 50 ms worst.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QMdiArea>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <ctime>
#include <memory>

#include "host/ChartWindows.h"
#include "host/DealingService.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"
#include "host/terminal/ReplayFeed.h"
#include "host/terminal/Terminal.h"

namespace {

struct Session {
    std::unique_ptr<host::Emulator> emulator;
    std::unique_ptr<host::terminal::Terminal> terminal;

    bool Open(const host::terminal::TerminalOptions& options) {
        emulator.reset(new host::Emulator);
        if (!emulator->loadModule()) return false;
        emulator->dealing().addDemoAccounts(1);
        emulator->mainWindow().setOnScreen(true);
        emulator->startUp();
        terminal.reset(new host::terminal::Terminal(*emulator, options));
        terminal->window()->show();
        terminal->start();
        QElapsedTimer waited;
        waited.start();
        while (!terminal->isReady() && waited.elapsed() < 30000) QApplication::processEvents(QEventLoop::AllEvents, 10);
        return terminal->isReady();
    }
    // Every chart window painted, as the screen would show it.
    void PaintAll() {
        for (void* w : emulator->charts().widgets()) emulator->charts().container(w)->grab();
    }
    ~Session() {
        terminal.reset();
        emulator.reset();
    }
};

void BM_StartToFirstPaint(benchmark::State& state) {
    QTemporaryDir dir;
    const QString workspace = dir.filePath(QStringLiteral("workspace.xml"));
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(workspace);
        QFile::copy(QStringLiteral(PF_SOURCE_DIR "/docs/terminal/demo-workspace.xml"), workspace);
        state.ResumeTiming();
        std::unique_ptr<Session> s(new Session);
        host::terminal::TerminalOptions options;
        options.workspace = workspace;
        if (!s->Open(options) || s->emulator->charts().widgets().size() != 3) {
            state.SkipWithError("the demo workspace did not open");
            return;
        }
        s->PaintAll();
        state.PauseTiming();
        s.reset();  // closing is not part of the start
        state.ResumeTiming();
    }
}

long long MonotonicNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

void BM_ProcessStartToFirstPaint(benchmark::State& state) {
    QTemporaryDir dir;
    const QString workspace = dir.filePath(QStringLiteral("workspace.xml"));
    const QString picture = dir.filePath(QStringLiteral("terminal.png"));
    double painted = 0, exited = 0;
    for (auto _ : state) {
        QFile::remove(workspace);
        QFile::copy(QStringLiteral(PF_SOURCE_DIR "/docs/terminal/demo-workspace.xml"), workspace);
        QProcess pfhost;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("PFHOST_PAINT_CLOCK"), QStringLiteral("1"));
        if (!env.contains(QStringLiteral("QT_QPA_PLATFORM"))) env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        pfhost.setProcessEnvironment(env);
        pfhost.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const long long start = MonotonicNs();
        pfhost.start(QStringLiteral(PF_PFHOST_PATH),
                     {QStringLiteral("terminal"), QStringLiteral("--work"), dir.path(), QStringLiteral("--workspace"), workspace,
                      QStringLiteral("--screenshot"), picture, QStringLiteral("--quit")});
        if (!pfhost.waitForFinished(60000) || pfhost.exitStatus() != QProcess::NormalExit || pfhost.exitCode() != 0) {
            state.SkipWithError("pfhost terminal did not end well");
            return;
        }
        const long long end = MonotonicNs();
        const QString out = QString::fromLocal8Bit(pfhost.readAllStandardOutput());
        const QRegularExpressionMatch m =
            QRegularExpression(QStringLiteral("painted (\\d+) of (\\d+) windows at monotonic (\\d+) ns")).match(out);
        if (!m.hasMatch() || m.captured(1) != m.captured(2) || m.captured(2) != QLatin1String("3")) {
            state.SkipWithError("pfhost terminal did not report its three windows painted");
            return;
        }
        const double toExit = double(end - start) / 1e9;
        painted += double(m.captured(3).toLongLong() - start) / 1e6;
        exited += toExit * 1e3;
        state.SetIterationTime(toExit);
    }
    state.counters["painted_ms"] = painted / double(state.iterations());
    state.counters["exit_ms"] = exited / double(state.iterations());
}

void BM_ReplayEventLoopLatency(benchmark::State& state) {
    Session s;
    host::terminal::TerminalOptions options;
    options.holdBack = 5000;
    for (const char* name : {"USDCHF", "TTRC"})
        for (host::data::ChartType t :
             {host::data::ChartType::PointAndFigure, host::data::ChartType::Renko, host::data::ChartType::Kagi})
            options.windows.push_back({t, QString::fromLatin1(name)});
    if (!s.Open(options) || s.emulator->charts().widgets().size() != 6) {
        state.SkipWithError("six chart windows did not open");
        return;
    }
    const int kProbe = 5;
    double worst = 0, total = 0;
    long probes = 0;
    std::size_t fed = 0;
    for (auto _ : state) {
        s.terminal->replay().setSpeed(1000);
        s.terminal->replay().play();
        QElapsedTimer clock, since;
        clock.start();
        since.start();
        QTimer probe;
        QObject::connect(&probe, &QTimer::timeout, [&] {
            const double late = std::max<qint64>(0, since.restart() - kProbe);
            worst = std::max(worst, late);
            total += late;
            ++probes;
        });
        probe.start(kProbe);
        const std::size_t before = s.terminal->replay().fed();
        while (clock.elapsed() < 2000) QApplication::processEvents(QEventLoop::AllEvents, 5);
        s.terminal->replay().pause();
        fed += s.terminal->replay().fed() - before;
    }
    state.counters["worst_ms"] = worst;
    state.counters["mean_ms"] = probes ? total / double(probes) : 0;
    state.counters["quotes_per_s"] = double(fed) / (2.0 * double(state.iterations()));
}

}  // namespace

BENCHMARK(BM_StartToFirstPaint)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ProcessStartToFirstPaint)->Unit(benchmark::kMillisecond)->Iterations(3)->UseManualTime();
BENCHMARK(BM_ReplayEventLoopLatency)->Unit(benchmark::kMillisecond)->Iterations(1);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
