#include "data/KagiData.h"

#include <QPainter>
#include <QRect>
#include <algorithm>
#include <cmath>

namespace pf {

float roundFloat(float value, int precision) {
    const long double p = precision;
    const long double half = 5 * std::pow(10.0L, -(p + 1));
    const long double scale = std::pow(10.0L, p);
    const long double shifted = value >= 0 ? value + half : value - half;
    return static_cast<float>(std::trunc(shifted * scale) / scale);
}

namespace {

// The stroke passes its switching level strictly between its ends (rows grow downwards,
// so VALUE < SOLID < END in price).
bool Crosses(int rowValue, int rowSolid, int rowEnd) {
    return rowEnd < rowSolid && rowSolid < rowValue;
}

}  // namespace

KagiData::KagiData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine)
    : PointData(line, engine) {}

void KagiData::Draw(QPainter& painter, fxDataPointArray* array) {
    Frame f;
    if (!BeginDraw(painter, array, f)) return;
    const ScaleEngine& e = *engine_;
    const QPen thin = MakePen(f.colour1, 1.0);
    const QPen thick = MakePen(f.colour0, 2.0);
    const QPen* pen = EntryState(array, f.first) == 1 ? &thick : &thin;

    for (int i = f.first; i < f.end; ++i, xPos_ += f.step) {
        const fxChartTypeRecord r = Record(array, i);
        const int xl = TruncToPixel(xPos_ + 1.0L);
        const int xr = TruncToPixel(xl + static_cast<long double>(f.step));
        const int yV = e.TranslateY(roundFloat(r.value, f.precision));
        const int yS = e.TranslateY(roundFloat(r.solid, f.precision));
        const int yE = e.TranslateY(roundFloat(r.end, f.precision));
        const bool crosses = Crosses(yV, yS, yE);
        // A stroke that cannot show only passes its pen on.
        if (!f.Drawn(i) || !stamps_.Shows(FigureStamps::Reach(xl, std::min({yV, yS, yE}), xr, std::max({yV, yS, yE}), 2))) {
            if (crosses && r.type == 0) pen = &thin;
            if (crosses && r.type == 1) pen = &thick;
            continue;
        }
        painter.setPen(*pen);
        if (crosses && r.type == 0) {
            // Falling through the level: the part above it keeps the pen, the rest is thin.
            painter.drawLine(xl, yE, xr, yE);
            painter.drawLine(xr, yS + 1, xr, yE);
            pen = &thin;
            painter.setPen(*pen);
            painter.drawLine(xr, yV, xr, yS);
        } else if (crosses && r.type == 1) {
            // Rising through the level: the part below it keeps the pen, the rest is thick.
            painter.drawLine(xl, yV, xr, yV);
            painter.drawLine(xr, yV, xr, yS);
            pen = &thick;
            painter.setPen(*pen);
            painter.drawLine(xr, yS + 1, xr, yE);
        } else if (r.type == 0) {
            painter.drawLine(xl, yE, xr, yE);
            painter.drawLine(xr, yV, xr, yE);
        } else {
            // Any type other than 0, crossing or not, is drawn as a rising stroke that keeps
            // its pen.
            painter.drawLine(xl, yV, xr, yV);
            painter.drawLine(xr, yV, xr, yE);
        }
    }
}

int KagiData::EntryState(const fxDataPointArray* array, int index) const {
    // The line enters a record as thick or thin as the last crossing before it left it: the
    // nearest crossing to the left decides, so the walk goes backwards and stops there
    // instead of running over the whole history. Thin when there is none.
    const ScaleEngine& e = *engine_;
    for (int i = std::min(index, RecordCount(array)) - 1; i >= 0; --i) {
        const fxChartTypeRecord r = Record(array, i);
        if (r.type != 0 && r.type != 1) continue;
        if (!Crosses(e.TranslateY(r.value), e.TranslateY(r.solid), e.TranslateY(r.end))) continue;
        return r.type;
    }
    return 0;
}

bool KagiData::IsUnderMouse(const QPoint& point, fxDataPointArray* array, const QString& name,
                            QString& text) {
    const ScaleEngine* e = engine_.get();
    return HitTest(array, name, text, [&](int k, const fxChartTypeRecord& r, int xa, int xb) {
        const int yT = e->TranslateY(r.end + r.step);
        const int yV = e->TranslateY(r.value);
        // The shoulders alternate between the top and the bottom of the strokes.
        const int start = (k % 2 == 0 ? yT : yV) - 1;
        const QRect shoulder(QPoint(xa, start), QPoint(xb - 1, start + 2));
        const QRect stroke(QPoint(xb - 1, yT), QPoint(xb + 1, yV - 1));
        return shoulder.contains(point, false) || stroke.contains(point, false);
    });
}

}  // namespace pf
