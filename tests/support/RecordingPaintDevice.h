// A paint device that records what a QPainter draws on it instead of rasterising: every
// drawLines, drawEllipse and drawRects call becomes one Primitive with the pen in effect.
// Renderer tests compare these primitives exactly.
#pragma once

#include <QLine>
#include <QPaintDevice>
#include <QPen>
#include <QRect>
#include <QString>
#include <QVector>
#include <memory>

class RecordingPaintEngine;

class RecordingPaintDevice : public QPaintDevice {
public:
    struct Primitive {
        enum Kind { Lines, Ellipse, Rects, Other };
        Kind kind = Other;
        QVector<QLine> lines;   // Lines
        QVector<QRect> rects;   // Ellipse (one bounding rectangle) and Rects
        QPen pen;
    };

    explicit RecordingPaintDevice(int width = 1000, int height = 1000);
    ~RecordingPaintDevice() override;

    QPaintEngine* paintEngine() const override;

    const std::vector<Primitive>& primitives() const;
    void clear();
    // Only the primitives of one kind.
    std::vector<Primitive> of(Primitive::Kind kind) const;
    // Every line drawn, in order.
    QVector<QLine> lines() const;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    int width_;
    int height_;
    std::unique_ptr<RecordingPaintEngine> engine_;
};

// A pen as text, for readable failures: "#rrggbb w1 s3 cap16 join64".
QString describePen(const QPen& pen);
