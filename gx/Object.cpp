#include "gx/Object.h"

#include <QPainter>

namespace gx {

Object::Object() : Object(QRect()) {}

Object::Object(const QRect& rect)
    : colors_{QColor(0, 0, 0), QColor(255, 255, 255), QColor(0, 0, 0), QColor(230, 228, 218)},
      rect_(rect) {}

Object::~Object() = default;

void Object::Move(const QPoint& to) { rect_.moveTopLeft(to); }

void Object::Resize(const QSize& size) { rect_.setSize(size); }

void Object::Select(bool selected) { selected_ = selected; }

void Object::SetRect(const QRect& rect) { rect_ = rect; }

void Object::DrawFrame(QPainter& painter) const {
    if (!frame_) return;
    painter.save();
    painter.setPen(colors_[FrameColor]);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect_.adjusted(0, 0, -1, -1));
    painter.restore();
}

}  // namespace gx
