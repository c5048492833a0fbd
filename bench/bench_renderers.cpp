// Frames of the three chart-type renderers: 300 visible columns of the USD/CHF example data
// drawn into a 1200 x 800 image, each frame cleared first. The plain clear is the floor.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <boost/shared_ptr.hpp>
#include <cstdio>
#include <cstdlib>

#include "data/PointDataFactory.h"
#include "data/ScaleEngine.h"
#include "gx/Line.h"
#include "host/DataCore.h"
#include "host/Host.h"
#include "host/data/ChartObject.h"

namespace {

constexpr int kColumns = 300;

struct Frame {
    QImage image{1200, 800, QImage::Format_ARGB32_Premultiplied};
    host::Host host;
    host::DataCore core{host};
    fxDataPointArray* array = nullptr;
    boost::shared_ptr<pf::ScaleEngine> engine{new pf::ScaleEngine};
    gx::Line line;
    boost::shared_ptr<pf::PointData> renderer;

    explicit Frame(host::data::ChartType type) {
        void* handle = core.createChart("USDCHF", type);
        const auto arrays = handle ? core.arrays(handle) : std::vector<fxDataPointArray*>();
        if (arrays.empty() || pf::PointData::RecordCount(arrays[0]) < kColumns) {
            std::fprintf(stderr, "bench_renderers: fewer than %d %s records\n", kColumns,
                         host::data::chartTypeName(type));
            std::exit(1);
        }
        array = arrays[0];
        const int count = pf::PointData::RecordCount(array);
        float low = 1e30f, high = -1e30f;
        for (int i = count - kColumns; i < count; ++i) {
            const fxChartTypeRecord r = pf::PointData::Record(array, i);
            low = std::min({low, r.value, r.end});
            high = std::max({high, r.value + r.step, r.end + r.step});
        }
        engine->SetColumnCount(kColumns);
        engine->SetFirstColumn(count - kColumns);
        engine->Update(image.rect(), 0.0f, float(count - 1), low, high);
        renderer = pf::PointDataFactory::Instance().Create(array->name.name, engine, &line);
    }
};

void BM_Clear(benchmark::State& state) {
    QImage image(1200, 800, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        image.fill(Qt::white);
        benchmark::DoNotOptimize(image.constBits());
    }
}

void BM_Draw(benchmark::State& state, host::data::ChartType type) {
    Frame frame(type);
    for (auto _ : state) {
        frame.image.fill(Qt::white);
        QPainter painter(&frame.image);
        frame.renderer->Draw(painter, frame.array);
    }
}

}  // namespace

BENCHMARK(BM_Clear)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Draw, PointAndFigure, host::data::ChartType::PointAndFigure)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Draw, Renko, host::data::ChartType::Renko)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Draw, Kagi, host::data::ChartType::Kagi)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
