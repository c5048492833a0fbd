// The chart window's paint and update costs, with the module's classes in-process and a
// small host that serves one synthetic chart-type array of any length:
//   - a full paint of a 1200 x 800 window (one area, 300 visible columns: caption, both
//     price scales, grid, time scale, figures) for each chart type, against the renderer
//     alone drawing the same columns into the same image;
//   - the same 300 newest columns out of 1,000 and out of 1,000,000 (paint must not grow
//     with history);
//   - one 3009 update that adds a column to a 1,000,000-column chart.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <cstring>
#include <map>
#include <vector>

#include "data/PointData.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "module/PFChartModule.h"

namespace {

const char16_t* TypeName(int type) {
    return type == 0 ? u"Point and Figure" : type == 1 ? u"Renko" : u"Kagi";
}

// One data object: `n` columns alternating up and down around 1.0, an hour apart.
struct SyntheticHost {
    std::vector<fxChartTypeRecord> records;
    std::vector<fxDataPointField> fields;
    fxDataPointArray array{};
    fxDataPointArray base{};
    void* const provider = reinterpret_cast<void*>(std::intptr_t(0x2000));
    void* const handle = reinterpret_cast<void*>(std::intptr_t(0x3000));

    SyntheticHost(int type, int n) {
        records.reserve(std::size_t(n) + 1024);
        for (int i = 0; i < n; ++i) Append();
        for (int i = 0; TypeName(type)[i]; ++i) array.name.name[i] = TypeName(type)[i];
        const std::pair<int, const char*> layout[] = {{DPT_INT32, "TIME"}, {DPT_FLOAT, "STEP"}, {DPT_FLOAT, "VALUE"},
                                                      {DPT_INT32, "TYPE"}, {DPT_FLOAT, "END"},  {DPT_FLOAT, "SOLID"}};
        for (const auto& f : layout) {
            fxDataPointField d{};
            d.type = f.first;
            std::strncpy(d.name, f.second, sizeof d.name - 1);
            fields.push_back(d);
        }
        array.fields = fields.data();
        array.fieldCount = std::int32_t(fields.size());
        array.pointSize = sizeof(fxChartTypeRecord);
        array.precision = 4;
        array.typeShow.color0 = 0xff2e8b57;
        array.typeShow.color1 = 0xffc0392b;
        array.name.period.type = 'I';
        const char16_t symbol[] = u"SYNTH";
        for (int i = 0; symbol[i]; ++i) base.name.name[i] = symbol[i];
        Sync();
    }
    void Append() {
        const int i = int(records.size());
        const float box = 0.001f;
        const float low = 1.0f + box * float(i % 40);
        const int type = (i % 2) ? 1 : 0;
        records.push_back(fxChartTypeRecord{946684800 + 3600 * i, box, low, type, low + 5 * box, low + 2 * box});
    }
    void Sync() {
        array.points = reinterpret_cast<unsigned char*>(records.data());
        array.pointCount = std::int32_t(records.size());
    }

    static SyntheticHost* current;
    static int Callback(void*, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
        SyntheticHost& h = *current;
        switch (message) {
            case MSG_GET_INTERFACE: {
                coreInterfaceRequest* r = reinterpret_cast<coreInterfaceRequest*>(p1);
                if (r->count > 0 && r->result) r->result[0] = h.provider;
                return 0;
            }
            case MSG_CREATE_DPA:
                reinterpret_cast<coreCreateDpaData*>(p1)->handle = h.handle;
                return 0;
            case MSG_DPA_COUNT: {
                const std::int32_t one = 1;
                std::memcpy(reinterpret_cast<void*>(p2), &one, sizeof one);
                return 0;
            }
            case MSG_DPA_LIST: {
                coreListCreateData* list = reinterpret_cast<coreListCreateData*>(p2);
                fxDataPointArray* a = p1 == reinterpret_cast<std::intptr_t>(h.handle) ? &h.array : &h.base;
                if (list->count > 0) list->arrays[0] = a;
                return 0;
            }
            default:
                return 0;
        }
    }
};
SyntheticHost* SyntheticHost::current = nullptr;

struct Window {
    SyntheticHost host;
    PFChartModule module;
    PFChartWidget widget;
    QImage image{1200, 800, QImage::Format_ARGB32_Premultiplied};

    Window(int type, int n) : host(type, n), widget(&module, type, nullptr) {
        SyntheticHost::current = &host;
        module.InitializeWrap(&SyntheticHost::Callback, &SyntheticHost::Callback, &host, nullptr);
        widget.resize(1200, 800);
        widget.AddSecondaryPrimitive(nullptr, "SYNTH", "", 'I', 60, 0, nullptr, 0);
        // The newest 300 columns: scrolled to the end.
        widget.GetTimeScrollBar()->setValue(widget.GetTimeScrollBar()->maximum());
        Paint();
    }
    // The window paints every pixel of its chart part itself (it is opaque), so the image
    // is not cleared first; the renderer alone needs the clear.
    void Paint() {
        QPainter painter(&image);
        widget.Draw(painter, true);
    }
    gx::Line& Line() { return *widget.GetChart()->GetAreas()[0]->GetLayers()[0]->GetIndicators()[0]->GetLines()[0]; }
};

void BM_WindowPaint(benchmark::State& state) {
    Window w(int(state.range(0)), int(state.range(1)));
    for (auto _ : state) w.Paint();
    state.SetLabel(std::to_string(w.Line().GetEngine()->GetColumnCount()) + " visible");
}

void BM_RendererAlone(benchmark::State& state) {
    Window w(int(state.range(0)), 1000);
    for (auto _ : state) {
        w.image.fill(Qt::white);
        QPainter painter(&w.image);
        w.Line().GetRenderer()->Draw(painter, w.Line().GetArray());
    }
}

void BM_UpdateOneColumn(benchmark::State& state) {
    Window w(1, 1000000);
    coreCoreUpdateDpaData update;
    std::memset(&update, 0, sizeof update);
    update.handle = w.host.handle;
    for (auto _ : state) {
        w.host.Append();
        w.host.Sync();
        w.widget.UpdateIndicatorPrimitives(&update);
    }
}

}  // namespace

BENCHMARK(BM_WindowPaint)
    ->ArgsProduct({{0, 1, 2}, {1000, 1000000}})
    ->ArgNames({"type", "columns"})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RendererAlone)->DenseRange(0, 2)->ArgName("type")->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_UpdateOneColumn)->Unit(benchmark::kMicrosecond)->Iterations(500);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
