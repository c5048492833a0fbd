// The message an empty chart window shows: the chart type's name and, below it, "Add data to
// build graph", both centred in the chart's rectangle.
#pragma once

#include <QRect>
#include <QString>

class QPainter;
class PFChartWidget;

namespace pf {
namespace gui {

class DefaultMsg {
public:
    static void Draw(QPainter& painter, const QRect& rect, const QString& text, const PFChartWidget* widget);
};

}  // namespace gui
}  // namespace pf
