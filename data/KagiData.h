// Kagi renderer: each record is a vertical stroke from VALUE to END with a horizontal
// shoulder joining it to the previous one. The line is thick (width 2, colour word 0) or
// thin (width 1, colour word 1); it switches where a stroke crosses its record's SOLID
// level, turning thin for TYPE 0 and thick for TYPE 1, and stays so until the next crossing.
#pragma once

#include "data/PointData.h"

namespace pf {

// `value` rounded half away from zero to `precision` decimals.
float roundFloat(float value, int precision);

class KagiData : public PointData {
public:
    KagiData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine);

    void Draw(QPainter& painter, fxDataPointArray* array) override;
    // 1 when the line enters record `index` thick, 0 when thin.
    int EntryState(const fxDataPointArray* array, int index) const override;
    // A stroke is hit on its shoulder (a 3-row strip at the top of even columns, at the
    // bottom of odd ones) or on a 3-pixel strip around its vertical line.
    bool IsUnderMouse(const QPoint& point, fxDataPointArray* array, const QString& name,
                      QString& text) override;
};

}  // namespace pf
