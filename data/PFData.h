// Point and Figure renderer: each record is a column of X boxes (rising, TYPE != 0) or
// O boxes (falling, TYPE 0), stacked upwards from VALUE one STEP at a time.
#pragma once

#include "data/PointData.h"

namespace pf {

class PFData : public PointData {
public:
    PFData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine);

    void Draw(QPainter& painter, fxDataPointArray* array) override;
    // The hit rectangle of a column runs from the row of END + STEP down to the row just
    // above VALUE, across the column's width less its last pixel.
    bool IsUnderMouse(const QPoint& point, fxDataPointArray* array, const QString& name,
                      QString& text) override;

    // The most boxes one Draw paints (see Draw): a guard against hostile data, far above
    // what any visible part of a real chart holds (a window of a few thousand pixels shows
    // at most some hundred thousand boxes of one pixel). Boxes past it are not drawn.
    static constexpr long long kMaxBoxesPerDraw = 1000000;

private:
    enum Shapes { kCross, kNought };
};

}  // namespace pf
