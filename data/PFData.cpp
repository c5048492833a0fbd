#include "data/PFData.h"

#include <QPainter>
#include <QRect>
#include <algorithm>
#include <cmath>

namespace pf {

PFData::PFData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine)
    : PointData(line, engine) {}

void PFData::Draw(QPainter& painter, fxDataPointArray* array) {
    Frame f;
    if (!BeginDraw(painter, array, f)) return;
    const ScaleEngine& e = *engine_;
    const QPen xPen = MakePen(f.colour0);
    const QPen oPen = MakePen(f.colour1);
    // An X box spans one pixel more than the O drawn in the same column.
    const long double step = f.step;
    const int oWidth = TruncToPixel(1 + step);

    // Hostile columns (a box size far below one pixel) must not stall the terminal's GUI
    // thread. Boxes that cannot change a pixel are skipped exactly (see below); beyond that,
    // one paint draws at most this many boxes, far more than any readable chart holds.
    long long budget = kMaxBoxesPerDraw;
    const long double height = e.GetHeight();
    const long double aboveArea = e.GetTop() - height;
    const long double belowArea = e.GetBottom() + 1 + height;

    for (int i = f.first; i < f.end && budget > 0; ++i, xPos_ += f.step) {
        const fxChartTypeRecord r = Record(array, i);
        // Records left undrawn still use up the budget as when drawn.
        const bool drawn = f.Drawn(i);
        const int px = TruncToPixel(xPos_ + 0.5L);
        const long long boxes =
            static_cast<long long>(TruncToInt(std::fabs(static_cast<long double>(r.value) - r.end) /
                                                  r.step + 0.5L)) + 1;
        if (boxes < 1) continue;
        const bool rising = r.type != 0;
        stamps_.UsePen(rising ? xPen : oPen);
        const int x2 = TruncToPixel(px + 1 + step);
        float v = r.value;
        // Each box's upper edge is the next one's lower edge.
        int y1 = e.TranslateY(v);
        for (long long b = 0; b < boxes && budget > 0; ++b, --budget) {
            const float next = v + r.step;
            const int y2 = e.TranslateY(next);
            if (drawn && rising) {
                stamps_.Paint(painter, FigureStamps::Shape{kCross, x2 - px, y1 - y2},
                              FigureStamps::Reach(px, y1, x2, y2), [&](QPainter& p, const QPoint& o) {
                                  p.drawLine(px + o.x(), y1 + o.y(), x2 + o.x(), y2 + o.y());
                                  p.drawLine(px + o.x(), y2 + o.y(), x2 + o.x(), y1 + o.y());
                              });
            } else if (drawn) {
                // Between (px, y1) and (px + oWidth - 1, y2 - 1), given upper corner first: the
                // painter would turn a rectangle the wrong way up itself, and Qt 6 moves its
                // corners in by one where Qt 5 does not.
                const bool up = y2 < y1;
                const QRect oval(QPoint(px, up ? y2 - 1 : y1), QPoint(px + oWidth - 1, up ? y1 : y2 - 1));
                stamps_.Paint(painter, FigureStamps::Shape{kNought, oWidth, y2 - 1 - y1},
                              FigureStamps::Reach(px, y1, px + oWidth - 1, y2 - 1),
                              [&](QPainter& p, const QPoint& o) { p.drawEllipse(oval.translated(o)); });
            }
            // When the float no longer moves, every remaining box is this one again; once the
            // stack has left the area by a whole area height, every later box is further out.
            if (next == v) break;
            v = next;
            if ((r.step > 0 && std::max(y1, y2) < aboveArea) || (r.step < 0 && std::min(y1, y2) > belowArea))
                break;
            y1 = y2;
        }
    }
}

bool PFData::IsUnderMouse(const QPoint& point, fxDataPointArray* array, const QString& name,
                          QString& text) {
    const ScaleEngine* e = engine_.get();
    return HitTest(array, name, text, [&](int, const fxChartTypeRecord& r, int xa, int xb) {
        const QRect box(QPoint(xa, e->TranslateY(r.end + r.step)),
                        QPoint(xb - 1, e->TranslateY(r.value) - 1));
        return box.contains(point, false);
    });
}

}  // namespace pf
