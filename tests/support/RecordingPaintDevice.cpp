#include "RecordingPaintDevice.h"

#include <QPaintEngine>
#include <QPainter>

class RecordingPaintEngine : public QPaintEngine {
public:
    RecordingPaintEngine() : QPaintEngine(QPaintEngine::AllFeatures) {}

    std::vector<RecordingPaintDevice::Primitive> recorded;

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }

    void updateState(const QPaintEngineState& state) override {
        if (state.state() & QPaintEngine::DirtyPen) pen_ = state.pen();
    }

    void drawLines(const QLine* lines, int count) override {
        auto& p = add(RecordingPaintDevice::Primitive::Lines);
        for (int i = 0; i < count; ++i) p.lines.push_back(lines[i]);
    }
    void drawLines(const QLineF* lines, int count) override {
        auto& p = add(RecordingPaintDevice::Primitive::Lines);
        for (int i = 0; i < count; ++i) p.lines.push_back(lines[i].toLine());
    }
    void drawEllipse(const QRect& rect) override {
        add(RecordingPaintDevice::Primitive::Ellipse).rects.push_back(rect);
    }
    void drawEllipse(const QRectF& rect) override {
        add(RecordingPaintDevice::Primitive::Ellipse).rects.push_back(rect.toRect());
    }
    void drawRects(const QRect* rects, int count) override {
        auto& p = add(RecordingPaintDevice::Primitive::Rects);
        for (int i = 0; i < count; ++i) p.rects.push_back(rects[i]);
    }
    void drawRects(const QRectF* rects, int count) override {
        auto& p = add(RecordingPaintDevice::Primitive::Rects);
        for (int i = 0; i < count; ++i) p.rects.push_back(rects[i].toRect());
    }
    void drawPath(const QPainterPath&) override { add(RecordingPaintDevice::Primitive::Other); }
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {
        add(RecordingPaintDevice::Primitive::Other);
    }
    void drawPolygon(const QPoint*, int, PolygonDrawMode) override {
        add(RecordingPaintDevice::Primitive::Other);
    }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {
        add(RecordingPaintDevice::Primitive::Other);
    }
    void drawTextItem(const QPointF&, const QTextItem&) override {
        add(RecordingPaintDevice::Primitive::Other);
    }

private:
    RecordingPaintDevice::Primitive& add(RecordingPaintDevice::Primitive::Kind kind) {
        recorded.emplace_back();
        recorded.back().kind = kind;
        recorded.back().pen = pen_;
        return recorded.back();
    }

    QPen pen_;
};

RecordingPaintDevice::RecordingPaintDevice(int width, int height)
    : width_(width), height_(height), engine_(new RecordingPaintEngine) {}

RecordingPaintDevice::~RecordingPaintDevice() = default;

QPaintEngine* RecordingPaintDevice::paintEngine() const { return engine_.get(); }

const std::vector<RecordingPaintDevice::Primitive>& RecordingPaintDevice::primitives() const {
    return engine_->recorded;
}

void RecordingPaintDevice::clear() { engine_->recorded.clear(); }

std::vector<RecordingPaintDevice::Primitive> RecordingPaintDevice::of(Primitive::Kind kind) const {
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
    case PdmWidth: return width_;
    case PdmHeight: return height_;
    case PdmWidthMM: return width_ * 254 / 960;
    case PdmHeightMM: return height_ * 254 / 960;
    case PdmNumColors: return 0x7fffffff;
    case PdmDepth: return 32;
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY: return 96;
    case PdmDevicePixelRatio: return 1;
    case PdmDevicePixelRatioScaled: return int(QPaintDevice::devicePixelRatioFScale());
    }
    return 0;
}

QString describePen(const QPen& pen) {
    return QStringLiteral("%1 w%2 s%3 cap%4 join%5")
        .arg(pen.color().name())
        .arg(pen.widthF())
        .arg(int(pen.style()))
        .arg(int(pen.capStyle()))
        .arg(int(pen.joinStyle()));
}
