// The three computed chart types of the data core, their array names and the settings a
// chart object is created with.
#pragma once

#include <string>

namespace host {
namespace data {

// Values as the module's DataTypeShow: 0 Point and Figure, 1 Renko, 2 Kagi.
enum class ChartType { PointAndFigure = 0, Renko = 1, Kagi = 2 };

// The array name the module's renderer factory looks for: "Point and Figure", "Renko", "Kagi".
const char* chartTypeName(ChartType type);
// "pf", "renko", "kagi" (as `pfhost` takes them) or the array names; false when unknown.
bool parseChartType(const std::string& text, ChartType* type);

// Per chart object. Zero means "derive a default": the box from the instrument's price
// range and precision, the reversal 3 boxes. Renko always reverses after two boxes and
// ignores `reversal`. Kagi reverses after `percent` per cent of the last extreme when
// `percent` is above zero, otherwise after `reversal` boxes.
// Colours of the chart arrays (32-bit ARGB): `rising` for X boxes, rising bricks and the
// thick Kagi line, `falling` for O boxes, falling bricks and the thin Kagi line.
enum : unsigned { kRisingColour = 0xFF00A000u, kFallingColour = 0xFFD00000u };

// The price of each quote the figures are built from: its close, the middle of its high and
// low, or the typical price (high + low + close) / 3. Only the close for quotes without
// high and low.
enum class PriceField { Close = 0, Median = 1, Typical = 2 };

struct ChartSettings {
    double box = 0;
    int reversal = 0;
    double percent = 0;
    unsigned rising = kRisingColour;
    unsigned falling = kFallingColour;
    PriceField price = PriceField::Close;
};

enum { kDefaultReversal = 3 };

}  // namespace data
}  // namespace host
