#include "gui/DefaultMsg.h"

#include <QFontMetrics>
#include <QPainter>

#include "gui/PFChartWidget.h"
#include "module/CModule.h"
#include "util/QtCompat.h"

namespace pf {
namespace gui {

void DefaultMsg::Draw(QPainter& painter, const QRect& rect, const QString& text, const PFChartWidget* widget) {
    painter.save();
    painter.setPen(QColor(130, 130, 130));
    if (widget) painter.setFont(widget->font());
    const QFontMetrics metrics(painter.font());
    const int height = pf::FontHeight(metrics);
    const int x = rect.left() + (rect.width() - metrics.horizontalAdvance(text)) / 2;
    const int y = rect.top() + (rect.height() - height) / 2;
    painter.drawText(x, y, text);
    const QString hint = CModule::Current() ? CModule::Current()->tr("PF0020") : QStringLiteral("PF0020");
    const int x2 = rect.left() + (rect.width() - metrics.horizontalAdvance(hint)) / 2;
    painter.drawText(x2, y + 2 * height, hint);
    painter.restore();
}

}  // namespace gui
}  // namespace pf
