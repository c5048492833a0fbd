#include "data/RenkoData.h"

#include <QPainter>
#include <QRect>

namespace pf {

RenkoData::RenkoData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine)
    : PointData(line, engine) {}

void RenkoData::Draw(QPainter& painter, fxDataPointArray* array) {
    Frame f;
    if (!BeginDraw(painter, array, f)) return;
    const ScaleEngine& e = *engine_;
    const QPen risePen = MakePen(f.colour0);
    const QPen fallPen = MakePen(f.colour1);

    for (int i = f.first; i < f.end; ++i, xPos_ += f.step) {
        if (!f.Drawn(i)) continue;
        const fxChartTypeRecord r = Record(array, i);
        const int px = TruncToPixel(xPos_ + 0.5L);
        const int y1 = e.TranslateY(r.value);
        const int y2 = e.TranslateY(r.value + r.step);
        // Unlike the X box, the brick's right side has no extra pixel.
        const int xr = TruncToPixel(static_cast<long double>(xPos_) + f.step + 0.5L);
        stamps_.UsePen(r.type != 0 ? risePen : fallPen);
        stamps_.Paint(painter, FigureStamps::Shape{0, xr - px, y1 - y2}, FigureStamps::Reach(px, y1, xr, y2),
                      [&](QPainter& p, const QPoint& o) {
                          const int left = px + o.x(), right = xr + o.x(), a = y1 + o.y(), b = y2 + o.y();
                          p.drawLine(left, a, left, b);
                          p.drawLine(left, a, right, a);
                          p.drawLine(left, b, right, b);
                          p.drawLine(right, a, right, b);
                      });
    }
}

bool RenkoData::IsUnderMouse(const QPoint& point, fxDataPointArray* array, const QString& name,
                             QString& text) {
    const ScaleEngine* e = engine_.get();
    return HitTest(array, name, text, [&](int, const fxChartTypeRecord& r, int xa, int xb) {
        const int yA = e->TranslateY(r.end + r.step);
        const int yB = e->TranslateY(r.value);
        const int h = (yB - yA) / 2;
        const QRect lowerHalf(QPoint(xa, yA + h), QPoint(xb - 1, yA + 2 * h - 1));
        return lowerHalf.contains(point, false);
    });
}

}  // namespace pf
