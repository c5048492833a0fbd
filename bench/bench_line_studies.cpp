// Painting a chart window with line studies: 50 studies of mixed types (horizontal and
// vertical lines, trend lines, texts, three-arc studies, polylines) over 300 visible columns,
// against the same window without them. Goal: at most twice the paint time.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <cstring>
#include <map>
#include <vector>

#include "data/PointData.h"
#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/ls/LineStudy.h"
#include "module/PFChartModule.h"
#include "tests/support/FakeLsProvider.h"

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
    FakeLsProvider studies;

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
    static int Callback(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
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
            default: {
                // The line studies' messages go to their provider.
                const int r = h.studies.Handle(target, message, p1, p2);
                return r < 0 ? 0 : r;
            }
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

// The window with `count` studies spread over its visible columns and prices.
void AddStudies(Window& w, int count) {
    static const char* const kinds[] = {"HLine", "VLine", "Line", "Text", "Arc", "PolyLine"};
    gx::Line& line = w.Line();
    const pf::ScaleEngine& e = *line.GetEngine();
    const int first = e.GetFirstColumn();
    const int visible = e.GetColumnCount();
    const float low = e.GetMinPrice(), high = e.GetMaxPrice();
    for (int i = 0; i < count; ++i) {
        const char* kind = kinds[i % 6];
        const boost::shared_ptr<gx::LineStudy> study = w.widget.StartLineStudy(
            w.widget.GetChart()->GetAreas()[0]->Rect().center(), w.host.studies.handle(), kind, 0x3050A0, false);
        if (!study) continue;
        std::vector<lsPointShape> points;
        const int n = std::strcmp(kind, "PolyLine") == 0 ? 6 : study->GetCPCount();
        for (int p = 0; p < n; ++p) {
            lsPointShape s{};
            s.m_typePoint = p + 1 == n && std::strcmp(kind, "PolyLine") == 0 ? LS_POINT_LAST : LS_POINT_PLACED;
            const int column = first + (i * 37 + p * 23) % std::max(1, visible - 1);
            s.m_xTime = std::int32_t(line.GetIndexVirtualTime(column));
            s.value = low + (high - low) * float((i * 13 + p * 29) % 100) / 100.0f;
            points.push_back(s);
        }
        study->RestorePoints(points);
        study->FinishCreating(true);
        study->SetState(gx::LineStudy::StateCreated);
        study->Select(i % 10 == 0);  // a few show their markers
    }
    w.Paint();
}

void BM_PaintLineStudies(benchmark::State& state) {
    Window w(int(state.range(0)), 1000);
    AddStudies(w, int(state.range(1)));
    for (auto _ : state) w.Paint();
    state.SetLabel(std::to_string(w.Line().GetLineStudies().size()) + " studies, " +
                   std::to_string(w.Line().GetEngine()->GetColumnCount()) + " visible");
}

}  // namespace

BENCHMARK(BM_PaintLineStudies)
    ->ArgsProduct({{0, 1, 2}, {0, 50}})
    ->ArgNames({"type", "studies"})
    ->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
