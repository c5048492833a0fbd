// A paint device that records what a QPainter draws instead of rasterising: each drawLines,
// drawEllipse and drawRects call becomes one Primitive with the pen then in effect.
#pragma once

#include <QLine>
#include <QPaintDevice>
#include <QPen>
#include <QRect>
#include <QVector>
#include <memory>
#include <vector>

class RecordingPaintEngine;

class RecordingPaintDevice : public QPaintDevice {
public:
    struct Primitive {
        enum Kind { Lines, Ellipse, Rects } kind;
        QVector<QLine> lines;  // Lines
        QVector<QRect> rects;  // the ellipse's bounding rectangle, or the rectangles
        QPen pen;
    };

    RecordingPaintDevice();
    ~RecordingPaintDevice() override;
    QPaintEngine* paintEngine() const override;

    const std::vector<Primitive>& primitives() const;
    void clear();
    std::vector<Primitive> of(Primitive::Kind kind) const;
    QVector<QLine> lines() const;  // every line, in order

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    std::unique_ptr<RecordingPaintEngine> engine_;
};
