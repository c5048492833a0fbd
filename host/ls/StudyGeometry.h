// Geometry of the emulator's line studies: from the control points a chart sends (4510),
// the corrected control points and the shapes it draws, on the data of the study's line.
//
// Studies and their control points (the order the user places them in):
//   "HLine"              1: the price; one horizontal line titled with the price
//   "VLine"              1: the candle; one vertical line titled with the candle's date
//   "Line"               2: the ends; one straight line, extended left/right on request
//   "Text"               1: the anchor; one text
//   "Arc"                2: the start of the move and the centre; arcs at 38.2, 50 and
//                           61.8 percent of their distance around the centre, on the side
//                           of the start, and the dotted trend line between the two
//   "Chanel"             4: point 0 and point 2 are the ends of the first line; point 3
//                           gives the parallel line (its price at the channel's middle);
//                           point 1 is the first line's middle handle. The output points 1
//                           and 3 are the middles of shapes 0 and 2, the two boundaries;
//                           shape 1 is the dashed middle line. While point 2 is not placed
//                           yet the first line runs from point 0 to point 1.
//   "Andrews Pitchfork"  4: the pivot and the two reaction points; point 3, the middle of
//                           points 1 and 2, is the host's (the chart sends its index -1).
//                           Shapes: the median from the pivot through point 3 and its two
//                           parallels through points 1 and 2, all extended to the right,
//                           and the line between points 1 and 2.
//   "PolyLine"          10: up to ten points; the list ends after a point of type 2. Shape
//                           i is the segment from point i to point i + 1.
//
// A control point whose words are all zero has not been placed: the shapes that need it are
// invisible. Indices follow the chart's rule: index type 1 counts from the last candle.
#pragma once

#include <QString>
#include <cstdint>
#include <string>
#include <vector>

#include "abi/records/linestudy_records.h"

namespace host {
namespace ls {

enum class StudyKind { HLine, VLine, Line, Text, Arc, Chanel, Pitchfork, PolyLine };

// The study of a type name as the chart sends it ("HLine", "Andrews Pitchfork" ...); false
// for any other name.
bool kindFromName(const std::string& name, StudyKind* kind);
const char* studyName(StudyKind kind);
// Every study type name, in the order of StudyKind.
std::vector<std::string> studyNames();
// What the chart shows as the study's title (4516).
QString studyTitle(StudyKind kind);

int controlPointCount(StudyKind kind);
// The shape types (lsShapeType) of the study, one per shape, in order.
std::vector<std::int32_t> shapeTypes(StudyKind kind);
// Bytes of a shape type's data block; 0 for a type outside the table.
std::int32_t shapeDataSize(std::int32_t type);

// The settings of one study that its property page would edit.
struct StudyParams {
    std::uint32_t colour = 0x0000C0;  // 0x00RRGGBB
    std::int32_t penWidth = 1;
    std::int32_t penStyle = 1;        // Qt::SolidLine
    bool extendLeft = false;          // "Line"
    bool extendRight = false;
    QString text = QStringLiteral("Text");  // "Text"
    std::string family = "DejaVu Sans";
    std::int32_t pointSize = 10;
    bool bold = false, italic = false, underline = false, strikeOut = false;
};

// The data of the study's line: the time of each candle (column, brick, stroke), the
// instrument's decimals and its period. Beyond the data a candle's time steps from the last
// candle's by whole periods, as the chart's time scale counts it (months and years taken
// as 30 and 365 days).
struct SeriesView {
    std::vector<std::int32_t> times;
    int precision = 4;
    std::int64_t period = 60;  // seconds
    std::int32_t lastIndex() const { return std::int32_t(times.size()) - 1; }
    // The candle index of a point (index type 1 counts from the last candle).
    std::int64_t normalIndex(const lsPointShape& p) const;
    // A point at candle `index` (beyond the last candle: relative, index type 1) with the
    // time of that candle.
    lsPointShape pointAt(std::int64_t index, float value) const;
    std::int32_t timeAt(std::int64_t index) const;
};

// A point the user has not placed yet: all its words are zero.
bool unplaced(const lsPointShape& p);

// Output points and shapes of a study from its input points. `in` and `out` hold
// controlPointCount(kind) points, `shapes` shapeTypes(kind).size() records whose data
// blocks have shapeDataSize of their types; only the host's fields of each shape and its
// data block are written (never the data pointer).
void computeStudy(StudyKind kind, const StudyParams& params, const SeriesView& series, const lsPointShape* in,
                  lsPointShape* out, lsShape* shapes);

// The title of a horizontal line at `price` and of a vertical line at `time`.
QString priceTitle(double price, int precision);
QString dateTitle(std::int32_t time);

}  // namespace ls
}  // namespace host
