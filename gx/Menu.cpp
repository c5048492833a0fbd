#include "gx/Menu.h"

#include <QAction>
#include <QMenu>
#include <QMimeData>
#include <QPalette>
#include <QStringList>
#include <QWidget>
#include <algorithm>

namespace gx {

QAction* Menu::AddAction(QMenu* menu, const QString& text, int id) {
    if (!menu) return nullptr;
    QAction* action = menu->addAction(text);
    action->setData(id);
    return action;
}

bool MimeData::Provides(const QMimeData* data, const QString& type) {
    return data && data->formats().contains(type);
}

void SetBackgroundColor(QWidget* widget, const QColor& color) {
    if (!widget) return;
    QPalette palette = widget->palette();
    palette.setBrush(widget->backgroundRole(), QBrush(color));
    widget->setPalette(palette);
}

namespace util {

// Between the corners whichever way round they are, both included (QRect::normalized moves
// the corners of a backwards rectangle in by one on Qt 6, not on Qt 5).
bool PtInRect(const QRect& rect, const QPoint& point) {
    return std::min(rect.left(), rect.right()) <= point.x() && point.x() <= std::max(rect.left(), rect.right()) &&
           std::min(rect.top(), rect.bottom()) <= point.y() && point.y() <= std::max(rect.top(), rect.bottom());
}

bool PtInLine(const QRect& segment, const QPoint& point, int tolerance) {
    return PtInLine(segment.topLeft(), segment.bottomRight(), point, tolerance);
}

bool PtInLine(const QPoint& a, const QPoint& b, const QPoint& point, int tolerance) {
    // 64-bit sums: coordinates and tolerance may be anywhere in the int range.
    const long long t = tolerance;
    const long long px = point.x();
    const long long py = point.y();

    // Outside the segment's columns, widened by the tolerance on both sides.
    if (px < std::min(a.x(), b.x()) - t || px > std::max(a.x(), b.x()) + t) return false;
    const long long yLow = std::min(a.y(), b.y()) - t;
    const long long yHigh = std::max(a.y(), b.y()) + t;
    if (a.x() == b.x()) return py >= yLow && py <= yHigh;
    if (a.y() == b.y()) return std::llabs(py - a.y()) <= t;
    if (py < yLow || py > yHigh) return false;

    // Slanted: the distance to the line through `a` whose extents are the segment's pixel
    // extents (the coordinate differences plus one, in the segment's direction), compared
    // strictly. Squares avoid the square root so that a point exactly at the tolerance is
    // told apart exactly; long double keeps them exact for any on-screen coordinates.
    if (t <= 0) return false;
    const long long dx = static_cast<long long>(b.x()) - a.x();
    const long long dy = static_cast<long long>(b.y()) - a.y();
    const long double w = dx > 0 ? dx + 1 : dx - 1;
    const long double h = dy > 0 ? dy + 1 : dy - 1;
    const long double cross = (px - a.x()) * h - (py - a.y()) * w;
    return static_cast<long double>(t) * t * (w * w + h * h) > cross * cross;
}

}  // namespace util

}  // namespace gx
