// The square close button of an area's caption: filled with the second colour while pressed
// and the fourth otherwise, framed and crossed in the third.
#pragma once

#include "gx/Object.h"

class QMouseEvent;
class PFChartWidget;

namespace gx {

class Button : public Object {
public:
    explicit Button(const QRect& rect);

    void Draw(QPainter& painter) const override;
    bool Contains(const QPoint& point) const;
    // Sets the pressed (selected) flag to whether the press lies inside; returns it.
    bool mousePressEvent(const QMouseEvent& event);
    // Second and third colours from the widget's skin, fourth from its area colour.
    void UpdateProperties(const PFChartWidget* widget);
};

}  // namespace gx
