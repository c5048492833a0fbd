// What a chart window shows, in words: its instrument, period, chart type, box size and
// reversal, and the span of its dates. The terminal puts it into the sub-window's title, the
// Instruments panel and the header line of a printed or exported chart, for example
// "USDCHF 30 min · Point and Figure 0.005 × 3".
#pragma once

#include <QString>
#include <vector>

#include "abi/records/dpa_records.h"

namespace host {

class DataCore;

namespace data {
class ChartObject;
}

namespace terminal {

// The chart objects a window subscribed to (3013), oldest first; empty for a window that
// shows no instrument yet.
std::vector<data::ChartObject*> windowCharts(const DataCore& data, void* widget);

// "30 min", "ticks", "daily", "5 days", "weekly" ...; empty for an unknown period type.
QString periodText(const namePeriod& period);
// "0.005 × 3" (Point and Figure, Kagi by boxes), "0.005" (Renko), "2% reversal" (Kagi by
// percentage): the box written with the instrument's decimals.
QString settingsText(const data::ChartObject& chart);
// "USDCHF 30 min · Point and Figure 0.005 × 3".
QString chartTitle(const data::ChartObject& chart);
// The title followed by the first and last date of the instrument's quotes the chart is
// built from: "… · 1996-01-02 to 2005-03-04".
QString chartHeader(const data::ChartObject& chart);
// The title of the window's first chart; `fallback` when it shows none.
QString windowTitle(const DataCore& data, void* widget, const QString& fallback);

}  // namespace terminal
}  // namespace host
