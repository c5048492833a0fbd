// A vertical line through the column of a candle (shape type 4), with an optional title at
// the top, the bottom or the middle of the area. A line whose first word is negative has no
// place yet: it is neither drawn nor hit.
#pragma once

#include "gx/ls/LsBaseImpl.h"

namespace gx {

class LsVLine : public LsBaseImpl {
public:
    using LsBaseImpl::LsBaseImpl;
    void Draw(QPainter& painter) override;
    bool PtInLS(const QPoint& point) const override;

private:
    // The line's x; false when it has no place.
    bool X(int& x) const;
};

}  // namespace gx
