#include "gx/Button.h"

#include <QMouseEvent>
#include <QPainter>

#include "gui/PFChartWidget.h"

namespace gx {

Button::Button(const QRect& rect) : Object(rect) {}

void Button::Draw(QPainter& painter) const {
    painter.save();
    const QRect r = rect_;
    painter.fillRect(r, selected_ ? colors_[FillColor] : colors_[BackColor]);
    painter.setPen(colors_[TextColor]);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(r.adjusted(0, 0, -1, -1));
    painter.drawLine(r.left() + 3, r.top() + 3, r.right() - 2, r.bottom() - 2);
    painter.drawLine(r.left() + 3, r.bottom() - 2, r.right() - 2, r.top() + 3);
    painter.restore();
}

bool Button::Contains(const QPoint& point) const { return rect_.contains(point); }

bool Button::mousePressEvent(const QMouseEvent& event) {
    selected_ = Contains(event.pos());
    return selected_;
}

void Button::UpdateProperties(const PFChartWidget* widget) {
    if (!widget) return;
    colors_[FillColor] = widget->GetButtonFillColor();
    colors_[TextColor] = widget->GetButtonFrameColor();
    colors_[BackColor] = widget->GetAreasColor();
}

}  // namespace gx
