#include "gx/ls/LsVLine.h"

#include <QPainter>
#include <cstring>

#include "data/ScaleEngine.h"
#include "gx/ls/LsUtil.h"

namespace gx {

bool LsVLine::X(int& x) const {
    const lsShapeVLine* block = Block<lsShapeVLine>();
    if (!block || !IsVisible() || !engine_) return false;
    const std::int32_t placed = block->placed;
    if (placed < 0) return false;
    lsShapeVLine copy;
    std::memcpy(&copy, block, sizeof copy);
    x = util::LsBase::CalcX(study_, engine_, copy);
    return true;
}

void LsVLine::Draw(QPainter& painter) {
    int x = 0;
    if (!X(x)) return;
    const pf::ScaleEngine& e = *engine_;
    if (x < e.GetLeft() || x > e.GetRight() + 1) return;
    const std::int32_t width = shape_->penWidth;
    const int h = static_cast<int>(width * 0.5 + 0.5);
    // The clip's width is x + h, as the horizontal line's height is y + h; the line ends at
    // bottom - top of the engine's rectangle, not at its bottom. Inside the clip it is drawn
    // without setting it.
    const QRect clip(QPoint(x - h, e.GetTop()), QPoint(2 * x - 1, e.GetBottom() - 1));
    const QLine line(x, e.GetTop(), x, e.GetBottom() - e.GetTop());
    if (clip.contains(QRect(line.p1(), line.p2()).normalized().adjusted(-h, -h, h, h))) {
        painter.drawLine(line);
    } else {
        painter.save();
        painter.setClipRect(clip);
        painter.drawLine(line);
        painter.restore();
    }
    switch (static_cast<std::int32_t>(shape_->titlePosition)) {
        case 3: DrawTitle(painter, x, rect_.top()); break;
        case 4: DrawTitle(painter, x, rect_.bottom()); break;
        case 6: DrawTitle(painter, x, (rect_.bottom() - rect_.top() + 1) / 2 + rect_.top()); break;
        default: break;
    }
}

bool LsVLine::PtInLS(const QPoint& point) const {
    int x = 0;
    if (!X(x)) return false;
    return util::LsBase::PtInShapeLine(QPoint(x, rect_.top()), QPoint(x, rect_.bottom()), point);
}

}  // namespace gx
