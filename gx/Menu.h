// Small helpers of the chart tree: menus, drag data, backgrounds and hit tests.
#pragma once

#include <QColor>
#include <QPoint>
#include <QRect>
#include <QString>

class QAction;
class QMenu;
class QMimeData;
class QWidget;

namespace gx {

struct Menu {
    // Adds an action with `text`, keeping `id` as the action's data.
    static QAction* AddAction(QMenu* menu, const QString& text, int id);
};

struct MimeData {
    // True when `type` is among the drag data's formats.
    static bool Provides(const QMimeData* data, const QString& type);
};

// Sets `color` as the brush of the widget's background role.
void SetBackgroundColor(QWidget* widget, const QColor& color);

namespace util {
// Containment in the normalized rectangle.
bool PtInRect(const QRect& rect, const QPoint& point);
// Whether `point` lies within `tolerance` pixels of the segment between the rectangle's
// corners (top-left to bottom-right); the slanted case compares strictly.
bool PtInLine(const QRect& segment, const QPoint& point, int tolerance);
bool PtInLine(const QPoint& a, const QPoint& b, const QPoint& point, int tolerance);
}  // namespace util

}  // namespace gx
