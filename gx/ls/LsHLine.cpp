#include "gx/ls/LsHLine.h"

#include <QPainter>

#include "data/ScaleEngine.h"
#include "gx/ls/LsUtil.h"

namespace gx {

bool LsHLine::TitleX(const QRect& area, int position, int& x) {
    switch (position) {
        case 1: x = area.right(); return true;
        case 2: x = area.left(); return true;
        case 5: x = (area.right() - area.left() + 1) / 2 + area.left(); return true;
        default: return false;
    }
}

void LsHLine::Draw(QPainter& painter) {
    const lsShapeHLine* block = Block<lsShapeHLine>();
    if (!block || !IsVisible() || !engine_) return;
    const int y = engine_->TranslateY(block->price);
    const std::int32_t width = shape_->penWidth;
    const int h = static_cast<int>(width * 0.5 + 0.5);
    // The clip's height is y + h, not 2h: it runs from y - h down to 2y - 1. A line that lies
    // inside it is drawn without setting it (the picture is the same, the paint is cheaper).
    const QRect clip(rect_.left(), y - h, rect_.width(), y + h);
    const QLine line(engine_->GetLeft(), y, engine_->GetRight() + 1, y);
    if (clip.contains(QRect(line.p1(), line.p2()).normalized().adjusted(-h, -h, h, h))) {
        painter.drawLine(line);
    } else {
        painter.save();
        painter.setClipRect(clip);
        painter.drawLine(line);
        painter.restore();
    }
    int x = 0;
    if (TitleX(rect_, shape_->titlePosition, x)) DrawTitle(painter, x, y);
}

bool LsHLine::PtInLS(const QPoint& point) const {
    const lsShapeHLine* block = Block<lsShapeHLine>();
    if (!block || !IsVisible() || !engine_) return false;
    const int y = engine_->TranslateY(block->price);
    return util::LsBase::PtInShapeLine(QPoint(rect_.left(), y), QPoint(rect_.right(), y), point);
}

}  // namespace gx
