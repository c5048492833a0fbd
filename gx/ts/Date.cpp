#include "gx/ts/Date.h"

#include <QPainter>
#include <QRect>
#include <QString>

namespace gx {
namespace ts {

CivilDay Date::CivilDayOf(std::int64_t t) {
    const auto floorDiv = [](std::int64_t a, std::int64_t b) { return a / b - (a % b != 0 && (a < 0) != (b < 0)); };
    // Days since 1 March of year 0, counted in 400-year eras of 146097 days; the year runs
    // from March so that the leap day comes last.
    const std::int64_t days = floorDiv(t, 86400) + 719468;
    const std::int64_t era = floorDiv(days, 146097);
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t fromMarch = (5 * dayOfYear + 2) / 153;
    const int day = int(dayOfYear - (153 * fromMarch + 2) / 5 + 1);
    const int month = int(fromMarch < 10 ? fromMarch + 3 : fromMarch - 9);
    return CivilDay{yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

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
