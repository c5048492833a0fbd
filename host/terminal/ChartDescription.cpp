#include "host/terminal/ChartDescription.h"

#include <QDateTime>

#include "host/DataCore.h"
#include "host/data/ChartObject.h"
#include "host/data/Instrument.h"

namespace host {
namespace terminal {

std::vector<data::ChartObject*> windowCharts(const DataCore& data, void* widget) {
    std::vector<data::ChartObject*> out;
    if (!widget) return out;
    for (data::ChartObject* c : data.chartObjects())
        for (const data::Subscription& s : c->subscriptions())
            if (s.subscriber == widget) {
                out.push_back(c);
                break;
            }
    return out;
}

QString periodText(const namePeriod& period) {
    const int n = period.length;
    const auto many = [n](const char* one, const char* unit) {
        return n <= 1 ? QString::fromLatin1(one) : QStringLiteral("%1 %2").arg(n).arg(QLatin1String(unit));
    };
    switch (period.type) {
    case 'I':
        return n == 0 ? QStringLiteral("ticks") : QStringLiteral("%1 min").arg(n);
    case 'D':
        return many("daily", "days");
    case 'W':
        return many("weekly", "weeks");
    case 'M':
        return many("monthly", "months");
    case 'Y':
        return many("yearly", "years");
    default:
        return QString();
    }
}

QString settingsText(const data::ChartObject& chart) {
    const data::ChartSettings& s = chart.settings();
    const QString box = QString::number(s.box, 'f', chart.instrument().precision());
    switch (chart.type()) {
    case data::ChartType::Renko:
        return box;
    case data::ChartType::Kagi:
        if (s.percent > 0) return QStringLiteral("%1% reversal").arg(s.percent);
        return QStringLiteral("%1 \u00d7 %2").arg(box).arg(s.reversal);
    case data::ChartType::PointAndFigure:
    default:
        return QStringLiteral("%1 \u00d7 %2").arg(box).arg(s.reversal);
    }
}

QString chartTitle(const data::ChartObject& chart) {
    const data::Instrument& i = chart.instrument();
    QString head = QString::fromStdString(i.name());
    const QString period = periodText(i.period());
    if (!period.isEmpty()) head += QLatin1Char(' ') + period;
    return QStringLiteral("%1 \u00b7 %2 %3")
        .arg(head, QString::fromLatin1(data::chartTypeName(chart.type())), settingsText(chart));
}

QString chartHeader(const data::ChartObject& chart) {
    const std::vector<data::Quote>& q = chart.instrument().quotes();
    if (q.empty()) return chartTitle(chart);
    const bool intraday = chart.instrument().period().type == 'I';
    const QString format = intraday ? QStringLiteral("yyyy-MM-dd hh:mm") : QStringLiteral("yyyy-MM-dd");
    const auto date = [&format](std::int32_t t) {
        return QDateTime::fromSecsSinceEpoch(t, Qt::UTC).toString(format);
    };
    return QStringLiteral("%1 \u00b7 %2 to %3").arg(chartTitle(chart), date(q.front().time), date(q.back().time));
}

QString windowTitle(const DataCore& data, void* widget, const QString& fallback) {
    const std::vector<data::ChartObject*> charts = windowCharts(data, widget);
    if (charts.empty()) return fallback;
    QString title = chartTitle(*charts.front());
    if (charts.size() > 1) title += QStringLiteral(" (+%1)").arg(charts.size() - 1);
    return title;
}

}  // namespace terminal
}  // namespace host
