// Renko renderer: each record is one hollow brick from VALUE to VALUE + STEP, in the X
// colour when rising (TYPE != 0) and the O colour when falling, whatever its END.
#pragma once

#include "data/PointData.h"

namespace pf {

class RenkoData : public PointData {
public:
    RenkoData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine);

    void Draw(QPainter& painter, fxDataPointArray* array) override;
    // Only the lower half of the span from VALUE to END + STEP hits a brick.
    bool IsUnderMouse(const QPoint& point, fxDataPointArray* array, const QString& name,
                      QString& text) override;
};

}  // namespace pf
