// One shape of a line study (a straight line, a text, a horizontal or vertical line, an
// arc), made by gx::LsFactory from a shape record the host filled, for one draw or one hit
// test. Shapes hold no state of their own beyond what they are given.
#pragma once

class QPainter;
class QPoint;

namespace gx {

class LsBase {
public:
    virtual ~LsBase() {}
    virtual void Draw(QPainter& painter) = 0;
    virtual bool PtInLS(const QPoint& point) const = 0;
};

}  // namespace gx
