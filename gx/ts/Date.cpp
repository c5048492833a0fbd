#include "gx/ts/Date.h"

#include <QPainter>
#include <QRect>
#include <QString>

namespace gx {
namespace ts {

bool Date::Draw2(QPainter& painter, const QDateTime& date, const QDateTime& from, const QDateTime& to, int left,
                 int bottom, int right, int threshold) {
    if (!date.isValid()) return false;
    // A date outside the span it is meant to label is not drawn; an invalid bound means the
    // span is open on that side.
    if (from.isValid() && date < from) return false;
    if (to.isValid() && date > to) return false;

    // Over a long span the month is shown elsewhere, so the day alone is enough.
    const QString text = date.toString(threshold > 39 ? QStringLiteral("dd") : QStringLiteral("dd.MM"));
    const int flags = Qt::AlignLeft | Qt::AlignTop;
    const QRect measured = painter.boundingRect(QRect(0, 0, 0, 0), flags, text);
    if (static_cast<long long>(right) - left <= measured.width()) return false;

    // The label starts one text height plus five pixels right of its tick.
    const int x = left + (measured.height() - 1) + 6;
    painter.drawText(QRect(x, bottom + 3, measured.width(), measured.height()), flags, text);
    return true;
}

}  // namespace ts
}  // namespace gx
