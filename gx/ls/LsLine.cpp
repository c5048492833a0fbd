#include "gx/ls/LsLine.h"

#include <QPainter>
#include <algorithm>
#include <cstring>

#include "data/ScaleEngine.h"
#include "gx/ls/LsUtil.h"

namespace gx {

bool LsLine::GetEnds(Ends& ends) const {
    const lsShapeLine* block = Block<lsShapeLine>();
    if (!block || !IsVisible() || !engine_) return false;
    lsShapeLine line;
    std::memcpy(&line, block, sizeof line);
    if (line.points[0].m_xTime < 0 || line.points[1].m_xTime < 0) return false;
    ends.x0 = util::LsBase::CalcX(study_, engine_, line.points[0]);
    ends.x1 = util::LsBase::CalcX(study_, engine_, line.points[1]);
    ends.y0 = engine_->TranslateY(line.points[0].value);
    ends.y1 = engine_->TranslateY(line.points[1].value);
    ends.extendLeft = line.extendLeft != 0;
    ends.extendRight = line.extendRight != 0;
    return true;
}

QPoint LsLine::Extend(int x, int y, double slope, int edge) const {
    const double ey = y + slope * (edge - x);
    if (ey < 0 && slope != 0) return QPoint(pf::TruncToPixel(x + (0 - y) / slope), 0);
    if (ey > rect_.bottom() && slope != 0) return QPoint(pf::TruncToPixel(x + (rect_.bottom() - y) / slope), rect_.bottom());
    return QPoint(edge, pf::TruncToPixel(ey));
}

void LsLine::Draw(QPainter& painter) {
    Ends e;
    if (!GetEnds(e)) return;
    // A segment wholly outside the area is not drawn, extended or not.
    if (e.x0 < rect_.left() && e.x1 < rect_.left()) return;
    if (e.x0 > rect_.right() && e.x1 > rect_.right()) return;
    if (e.y0 < rect_.top() && e.y1 < rect_.top()) return;
    if (e.y0 > rect_.bottom() && e.y1 > rect_.bottom()) return;
    const double slope = e.x1 == e.x0 ? 0.0 : double(e.y1 - e.y0) / double(e.x1 - e.x0);
    QPoint left(e.x0, e.y0), right(e.x1, e.y1);
    if (right.x() < left.x()) std::swap(left, right);
    QPoint from = left, to = right;
    // A vertical line has slope 0: its extensions run level to the area's edges from its
    // second point.
    if (e.extendRight) to = Extend(right.x(), right.y(), slope, rect_.right());
    if (e.extendLeft) from = Extend(left.x(), left.y(), slope, rect_.left());
    const std::int32_t width = shape_->penWidth;
    const int h = static_cast<int>(width * 0.5 + 0.5);
    // Clipped to its box grown by half the pen, within the area; a line whose box lies in the
    // area needs no clip to look the same.
    QRect box = QRect(from, to).normalized();
    if (e.x0 == e.x1) box = box.united(QRect(left, right).normalized());
    box.adjust(-h, -h, h, h);
    const bool clip = !rect_.contains(box);
    if (clip) {
        painter.save();
        painter.setClipRect(box.intersected(rect_));
    }
    if (e.x0 != e.x1) {
        painter.drawLine(from, to);
    } else {
        // The level extensions do not continue the segment: three pieces.
        painter.drawLine(left, right);
        if (e.extendRight) painter.drawLine(right, to);
        if (e.extendLeft) painter.drawLine(from, left);
    }
    if (clip) painter.restore();
    switch (static_cast<std::int32_t>(shape_->titlePosition)) {
        case 1: DrawTitle(painter, to.x(), to.y()); break;
        case 2: DrawTitle(painter, from.x(), from.y()); break;
        default: break;
    }
}

bool LsLine::PtInLS(const QPoint& point) const {
    Ends e;
    if (!GetEnds(e)) return false;
    const QPoint p0(e.x0, e.y0), p1(e.x1, e.y1);
    bool hit = util::LsBase::PtInShapeLine(p0, p1, point);
    const QPoint& rightMost = e.x1 >= e.x0 ? p1 : p0;
    const QPoint& leftMost = e.x1 >= e.x0 ? p0 : p1;
    if (e.extendRight) {
        if (e.x0 == e.x1)
            hit = hit || util::LsBase::PtInShapeLine(QPoint(e.x0, rect_.top()), p1, point);
        else
            hit = hit || util::LsBase::PtInShapeLine(
                             rightMost,
                             QPoint(rect_.right(), int(e.y0 + (long long)(e.y1 - e.y0) * (rect_.right() - e.x0) / (e.x1 - e.x0))),
                             point);
    }
    if (e.extendLeft) {
        if (e.x0 == e.x1)
            hit = hit || util::LsBase::PtInShapeLine(QPoint(e.x0, rect_.bottom()), p1, point);
        else
            hit = hit || util::LsBase::PtInShapeLine(
                             leftMost,
                             QPoint(rect_.left(), int(e.y0 + (long long)(e.y1 - e.y0) * (rect_.left() - e.x0) / (e.x1 - e.x0))),
                             point);
    }
    return hit;
}

}  // namespace gx
