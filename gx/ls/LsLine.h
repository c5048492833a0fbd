// A straight line between two control points (shape type 0), optionally extended to the
// area's left or right edge; an extension that would leave the area through the top or the
// bottom ends there. The title goes to the right (1) or left (2) end of the drawn line.
#pragma once

#include "gx/ls/LsBaseImpl.h"

namespace gx {

class LsLine : public LsBaseImpl {
public:
    using LsBaseImpl::LsBaseImpl;
    void Draw(QPainter& painter) override;
    bool PtInLS(const QPoint& point) const override;

private:
    struct Ends {
        int x0, y0, x1, y1;
        bool extendLeft, extendRight;
    };
    bool GetEnds(Ends& ends) const;
    // Continues from (x, y) with `slope` to the edge x `edge`, stopping at the top or the
    // bottom of the area.
    QPoint Extend(int x, int y, double slope, int edge) const;
};

}  // namespace gx
