// The module as the terminal meets it: every figure here goes through the entry points of
// the real libPFChartModule.so.1, loaded by the emulator with dlopen.
//
//   BM_FirstChart        62,496 USD/CHF quotes, box 0.001, reversal 3: a new window (5003),
//                        the instrument dropped on it (5007; the host computes the chart),
//                        the zoom slider at its start (the whole history) and the first
//                        paint of the 1200 x 800 window. Goal: at most 50 ms.
//   BM_Repaint           a full repaint of a 1200 x 800 window with three areas, 300
//                        visible columns and 20 line studies of all eight kinds placed with
//                        the mouse, against BM_FillAndBlit: a plain widget of the same size
//                        that fills itself and blits one picture, grabbed the same way.
//                        Goal: at most 3 times the blit. With nothing changed between two
//                        paints the lines and the grid blit the pictures they keep: that is
//                        what the terminal's 1000 ms repaint timer costs.
//   BM_RepaintScrolled   the same window scrolled by one column, back and forth, before each
//                        paint: every figure, study, scale and the grid is drawn anew.
//   BM_Replay            100,000 quotes replayed into 6 open windows (two of each type);
//                        every changed data object tells its window with 3009. Quotes per
//                        second.
//   BM_UpdateAndPaint    one quote (a new column, 3009) and the repaint that shows it, on a
//                        window over 1,000 and over 1,000,000 columns. Goal: the two within
//                        1.2 times.
//   BM_WindowMemory      heap a window over 1,000,000 columns holds beyond an empty one, the
//                        host's own chart object not counted. Goal: under 50 MB.
#include <benchmark/benchmark.h>

#include <QAbstractSlider>
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QSlider>
#include <QWidget>
#include <cmath>

#include "bench/BenchHost.h"
#include "host/StudyGestures.h"
#include "host/data/ChartObject.h"

namespace {

using host::data::ChartType;

const QSize kWindow(1200, 800);

QSlider* ZoomSlider(bench::Terminal& t, void* w) {
    QWidget* chart = t.charts().chartWidget(w);
    return chart ? chart->findChild<QSlider*>() : nullptr;
}

// The zoom slider's value is the number of positions hidden: `visible` positions on screen
// (all of them for -1), scrolled to the newest.
int ShowPositions(bench::Terminal& t, void* w, int visible) {
    QSlider* slider = ZoomSlider(t, w);
    if (!slider) return 0;
    // The slider's maximum is the total less four.
    const int total = slider->maximum() + 4;
    const int value = visible < 0 ? slider->minimum() : std::max(slider->minimum(), total - visible);
    // A first display shows the newest positions with the slider at its start: it has to
    // move for the zoom to follow it.
    if (slider->value() == value) slider->setValue(value < slider->maximum() ? value + 1 : value - 1);
    slider->setValue(value);
    if (QAbstractSlider* bar = t.charts().timeScrollBar(w)) bar->setValue(bar->maximum());
    return total - slider->value();
}

// Boxes of the Point and Figure columns of a chart object.
long Boxes(const host::data::ChartObject& chart) {
    long boxes = 0;
    for (const fxChartTypeRecord& r : chart.records())
        if (r.step > 0) boxes += std::lround(std::fabs(double(r.end) - double(r.value)) / double(r.step)) + 1;
    return boxes;
}

void ForgetCharts(bench::Terminal& t) {
    for (host::data::ChartObject* c : t.data().chartObjects()) t.data().release(c->handle());
}

void BM_FirstChart(benchmark::State& state) {
    bench::Terminal t;
    t.data().instrument("USDCHF");  // the price file is in the terminal's memory already
    t.data().setChartSettings(ChartType::PointAndFigure, {0.001, 3, 0});
    long columns = 0, boxes = 0;
    int shown = 0;
    for (auto _ : state) {
        void* w = t.charts().create(ChartType::PointAndFigure);
        t.charts().drop(w, {"USDCHF"});
        shown = ShowPositions(t, w, -1);
        const QImage image = t.charts().grab(w, kWindow);
        benchmark::DoNotOptimize(image.constBits());
        state.PauseTiming();
        if (!qEnvironmentVariableIsEmpty("PF_BENCH_PNG")) image.save(qEnvironmentVariable("PF_BENCH_PNG") + "/first-chart.png");
        const std::vector<host::data::ChartObject*> charts = t.data().chartObjects();
        if (!charts.empty()) {
            columns = long(charts.back()->records().size());
            boxes = Boxes(*charts.back());
        }
        t.charts().destroy(w);
        ForgetCharts(t);
        t.forget();
        state.ResumeTiming();
    }
    state.counters["columns"] = double(columns);
    state.counters["boxes"] = double(boxes);
    state.counters["shown"] = shown;
}

// Where the line studies of the repaint scene go: kind, then the clicks as fractions of the
// width and height of its area. A channel's end is clicked twice (the first click is the
// end's first guess); the pitchfork's fourth handle is the terminal's.
struct StudyRecipe {
    const char* kind;
    std::vector<QPointF> clicks;
};
const StudyRecipe kStudies[] = {
    {"Line", {{0.10, 0.20}, {0.45, 0.70}}},
    {"HLine", {{0.50, 0.35}}},
    {"VLine", {{0.30, 0.50}}},
    {"Text", {{0.60, 0.25}}},
    {"Arc", {{0.20, 0.80}, {0.40, 0.30}}},
    {"Chanel", {{0.15, 0.60}, {0.55, 0.40}, {0.55, 0.40}, {0.35, 0.75}}},
    {"Andrews Pitchfork", {{0.50, 0.50}, {0.65, 0.20}, {0.70, 0.80}}},
    {"PolyLine", {{0.62, 0.30}, {0.70, 0.65}, {0.78, 0.35}, {0.86, 0.60}}},
};

// The rows of each area, top to bottom: from below its close button (in its caption strip)
// to above the next area's; the last area is as tall as the one before it.
std::vector<QRect> AreaRects(bench::Terminal& t, void* w) {
    const std::vector<QRect> buttons = t.charts().closeButtons(w);
    QWidget* chart = t.charts().chartWidget(w);
    std::vector<QRect> areas;
    if (!chart) return areas;
    // The price scales take the window's sides; the middle 80 % is chart space.
    const int left = chart->width() / 10, width = chart->width() * 8 / 10;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        const int top = buttons[i].bottom() + 6;
        const int bottom = i + 1 < buttons.size() ? buttons[i + 1].top() - 6
                           : areas.empty()        ? chart->height() - 60
                                                  : top + areas.back().height();
        areas.push_back(QRect(left, top, width, std::max(1, bottom - top)));
    }
    return areas;
}

// A window of three USD/CHF areas showing 300 columns and `studies` line studies spread over
// the areas, and a plain widget of its size.
struct RepaintScene {
    bench::Terminal t;
    void* w = nullptr;
    int shown = 0;
    int placed = 0;
    explicit RepaintScene(int studies = 0) {
        t.data().setChartSettings(ChartType::PointAndFigure, {0.001, 3, 0});
        w = t.charts().create(ChartType::PointAndFigure);
        for (int i = 0; i < 3; ++i) t.charts().drop(w, {"USDCHF"});
        t.charts().grab(w, kWindow);
        shown = ShowPositions(t, w, 300);
        t.charts().grab(w, kWindow);
        const std::vector<QRect> areas = AreaRects(t, w);
        for (int i = 0; i < studies && !areas.empty(); ++i) {
            const StudyRecipe& recipe = kStudies[i % std::size(kStudies)];
            const QRect& area = areas[std::size_t(i) % areas.size()];
            // Later rounds of the same kind are moved along so that the studies do not cover
            // one another.
            const double shift = 0.07 * double(i / int(std::size(kStudies)));
            std::vector<QPoint> pixels;
            for (const QPointF& c : recipe.clicks)
                pixels.push_back(QPoint(area.left() + int(area.width() * std::min(0.95, c.x() * 0.9 + shift)),
                                        area.top() + int(area.height() * c.y())));
            std::string error;
            if (host::PlaceStudyAt(*t.emulator, w, recipe.kind, pixels, nullptr, &error))
                ++placed;
            else
                std::fprintf(stderr, "benchmark: %s not placed: %s\n", recipe.kind, error.c_str());
        }
        t.charts().pressKey(w, Qt::Key_Escape);  // nothing selected: the studies show no markers
        const QImage image = t.charts().grab(w, kWindow);
        if (!qEnvironmentVariableIsEmpty("PF_BENCH_PNG"))
            image.save(qEnvironmentVariable("PF_BENCH_PNG") + (studies ? "/repaint.png" : "/repaint-plain.png"));
    }
};

void BM_Repaint(benchmark::State& state) {
    RepaintScene s(int(state.range(0)));
    QWidget* container = s.t.charts().container(s.w);
    for (auto _ : state) {
        const QPixmap picture = container->grab();
        benchmark::DoNotOptimize(picture.cacheKey());
    }
    state.counters["shown"] = s.shown;
    state.counters["areas"] = 3;
    state.counters["studies"] = s.placed;
}

void BM_RepaintScrolled(benchmark::State& state) {
    RepaintScene s(20);
    QWidget* container = s.t.charts().container(s.w);
    QAbstractSlider* bar = s.t.charts().timeScrollBar(s.w);
    if (!bar) {
        state.SkipWithError("no time scroll bar");
        return;
    }
    const int end = bar->value();
    int step = 0;
    for (auto _ : state) {
        bar->setValue(end - (++step & 1));
        const QPixmap picture = container->grab();
        benchmark::DoNotOptimize(picture.cacheKey());
    }
    state.counters["shown"] = s.shown;
    state.counters["studies"] = s.placed;
}

class Blitter : public QWidget {
public:
    explicit Blitter(const QPixmap& picture) : picture_(picture) { resize(picture.size()); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        painter.drawPixmap(0, 0, picture_);
    }

private:
    QPixmap picture_;
};

void BM_FillAndBlit(benchmark::State& state) {
    RepaintScene s;
    Blitter blitter(s.t.charts().container(s.w)->grab());
    for (auto _ : state) {
        const QPixmap picture = blitter.grab();
        benchmark::DoNotOptimize(picture.cacheKey());
    }
}

void BM_Replay(benchmark::State& state) {
    const long quotes = state.range(0);
    bench::Terminal t;
    bench::writeWalk(t.path("walk.csv"), quotes + 1000);
    host::InstrumentOptions options;
    options.name = "WALK";
    options.live = 1000;
    if (!t.data().loadInstrument(t.path("walk.csv"), options)) state.SkipWithError("price file");
    for (int i = 0; i < 6; ++i) {
        void* w = t.charts().create(ChartType(i % 3));
        t.charts().drop(w, {"WALK"});
        t.charts().grab(w, kWindow);
    }
    t.forget();
    std::size_t replayed = 0, notices = 0;
    for (auto _ : state) {
        for (long i = 0; i < quotes; i += 1000) {
            replayed += t.data().replay("WALK", 1000);
            notices += t.data().notices().size();
            t.forget();
        }
    }
    state.counters["quotes/s"] = benchmark::Counter(double(replayed), benchmark::Counter::kIsRate);
    state.counters["3009"] = double(notices);
}

void BM_UpdateAndPaint(benchmark::State& state) {
    const long history = state.range(0);
    bench::Terminal t;
    bench::writeZigZag(t.path("zigzag.csv"), history + 20000);
    host::InstrumentOptions options;
    options.name = "ZIGZAG";
    options.holdBack = 20000;
    if (!t.data().loadInstrument(t.path("zigzag.csv"), options)) state.SkipWithError("price file");
    t.data().setChartSettings(ChartType::PointAndFigure, {0.001, 3, 0});
    void* w = t.charts().create(ChartType::PointAndFigure);
    t.charts().drop(w, {"ZIGZAG"});
    t.charts().grab(w, kWindow);
    const int shown = ShowPositions(t, w, 300);
    QWidget* container = t.charts().container(w);
    for (auto _ : state) {
        t.data().replay("ZIGZAG", 1);
        const QPixmap picture = container->grab();
        benchmark::DoNotOptimize(picture.cacheKey());
        state.PauseTiming();
        t.forget();
        state.ResumeTiming();
    }
    const std::vector<host::data::ChartObject*> charts = t.data().chartObjects();
    state.counters["columns"] = charts.empty() ? 0 : double(charts.back()->records().size());
    state.counters["shown"] = shown;
}

void BM_WindowMemory(benchmark::State& state) {
    const long history = state.range(0);
    bench::Terminal t;
    bench::writeZigZag(t.path("zigzag.csv"), history);
    host::InstrumentOptions options;
    options.name = "ZIGZAG";
    if (!t.data().loadInstrument(t.path("zigzag.csv"), options)) state.SkipWithError("price file");
    const host::data::ChartSettings settings{0.001, 3, 0};
    t.data().setChartSettings(ChartType::PointAndFigure, settings);
    double module = 0, hostShare = 0, resident = 0;
    long columns = 0;
    for (auto _ : state) {
        void* w = t.charts().create(ChartType::PointAndFigure);
        t.charts().grab(w, kWindow);
        malloc_trim(0);
        const long heap0 = bench::heapInUse();
        const long rss0 = bench::residentBytes();
        // The host's share: the chart object 3008 makes, made once on its own.
        void* handle = t.data().createChart("ZIGZAG", ChartType::PointAndFigure, settings);
        const long host = bench::heapInUse() - heap0;
        columns = handle ? long(t.data().chart(handle)->records().size()) : 0;
        t.data().release(handle);
        t.charts().drop(w, {"ZIGZAG"});
        ShowPositions(t, w, 300);
        t.charts().grab(w, kWindow);
        module = double(bench::heapInUse() - heap0 - host);
        hostShare = double(host);
        resident = double(bench::residentBytes() - rss0);
        state.PauseTiming();
        t.charts().destroy(w);
        ForgetCharts(t);
        t.forget();
        state.ResumeTiming();
    }
    state.counters["module_MB"] = module / 1048576.0;
    state.counters["host_MB"] = hostShare / 1048576.0;
    state.counters["rss_MB"] = resident / 1048576.0;
    state.counters["columns"] = double(columns);
}

}  // namespace

BENCHMARK(BM_FirstChart)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Repaint)->Arg(0)->Arg(20)->ArgName("studies")->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RepaintScrolled)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FillAndBlit)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Replay)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateAndPaint)->Arg(1000)->Arg(1000000)->Iterations(2000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WindowMemory)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
