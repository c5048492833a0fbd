// An arc (shape type 5): a half circle around control point 1 whose radius is a percentage
// of the distance from control point 0 to it, the upper or the lower half.
#pragma once

#include "gx/ls/LsBaseImpl.h"

namespace gx {

class LsArch : public LsBaseImpl {
public:
    LsArch(const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect, const lsControlPointsShapes& cps,
           int index, const LineStudy* study);
    void Draw(QPainter& painter) override;
    bool PtInLS(const QPoint& point) const override;

    // The circle's bounding square; throws StraightLine<float>::Error when the two points
    // give no distance (missing or not finite).
    QRect CalcArcRect() const;
    // Index `i` of input point `i` as the chart counts it (relative indices resolved).
    int GetCorrectedInCPIndex(int i) const;

private:
    const lsControlPointsShapes* cps_;
};

}  // namespace gx
