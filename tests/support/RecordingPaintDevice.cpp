#include "RecordingPaintDevice.h"

#include <QPaintEngine>

using Primitive = RecordingPaintDevice::Primitive;

class RecordingPaintEngine : public QPaintEngine {
public:
    RecordingPaintEngine() : QPaintEngine(QPaintEngine::AllFeatures) {}

    std::vector<Primitive> recorded;

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }
    void updateState(const QPaintEngineState& state) override {
        if (state.state() & QPaintEngine::DirtyPen) pen_ = state.pen();
    }

    void drawLines(const QLine* lines, int count) override { add(Primitive::Lines).lines = {lines, lines + count}; }
    void drawLines(const QLineF* lines, int count) override {
        Primitive& p = add(Primitive::Lines);
        for (int i = 0; i < count; ++i) p.lines.push_back(lines[i].toLine());
    }
    void drawEllipse(const QRect& rect) override { add(Primitive::Ellipse).rects = {rect}; }
    void drawEllipse(const QRectF& rect) override { add(Primitive::Ellipse).rects = {rect.toRect()}; }
    void drawRects(const QRect* rects, int count) override { add(Primitive::Rects).rects = {rects, rects + count}; }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}

private:
    Primitive& add(Primitive::Kind kind) {
        recorded.push_back(Primitive{kind, {}, {}, pen_});
        return recorded.back();
    }

    QPen pen_;
};

RecordingPaintDevice::RecordingPaintDevice() : engine_(new RecordingPaintEngine) {}
RecordingPaintDevice::~RecordingPaintDevice() = default;
QPaintEngine* RecordingPaintDevice::paintEngine() const { return engine_.get(); }
const std::vector<Primitive>& RecordingPaintDevice::primitives() const { return engine_->recorded; }
void RecordingPaintDevice::clear() { engine_->recorded.clear(); }

std::vector<Primitive> RecordingPaintDevice::of(Primitive::Kind kind) const {
    std::vector<Primitive> out;
    for (const Primitive& p : engine_->recorded)
        if (p.kind == kind) out.push_back(p);
    return out;
}

QVector<QLine> RecordingPaintDevice::lines() const {
    QVector<QLine> out;
    for (const Primitive& p : engine_->recorded) out += p.lines;
    return out;
}

int RecordingPaintDevice::metric(PaintDeviceMetric metric) const {
    switch (metric) {
    case PdmWidth: case PdmHeight: return 1000;
    case PdmDepth: return 32;
    case PdmDpiX: case PdmDpiY: case PdmPhysicalDpiX: case PdmPhysicalDpiY: return 96;
    case PdmDevicePixelRatio: return 1;
    case PdmDevicePixelRatioScaled: return int(QPaintDevice::devicePixelRatioFScale());
    default: return 265;  // millimetres and colour count: anything plausible
    }
}
