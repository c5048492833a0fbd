// A horizontal line across the whole area at the price of its data block (shape type 3),
// with an optional title at the right edge, the left edge or the middle.
#pragma once

#include "gx/ls/LsBaseImpl.h"

namespace gx {

class LsHLine : public LsBaseImpl {
public:
    using LsBaseImpl::LsBaseImpl;
    void Draw(QPainter& painter) override;
    bool PtInLS(const QPoint& point) const override;
    // The x of a title at `position` (1 right edge, 2 left edge, 5 middle); false for others.
    static bool TitleX(const QRect& area, int position, int& x);
};

}  // namespace gx
