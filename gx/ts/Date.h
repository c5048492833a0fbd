// One date label of the time scale.
#pragma once

#include <QDateTime>
#include <cstdint>

class QPainter;

namespace gx {
namespace ts {

// A day of the proleptic Gregorian calendar.
struct CivilDay {
    std::int64_t year;
    int month;  // 1 .. 12
    int day;    // 1 .. 31
};

class Date {
public:
    // The UTC date of `t` seconds from 1970, worked out in integers (the time scale looks at
    // the date of every visible position, thousands of them over a long history).
    static CivilDay CivilDayOf(std::int64_t t);
    // Formats `date` ("dd" when `threshold` is above 39, "dd.MM" otherwise), measures it and
    // draws it only when right - left is larger than the text width, at x = left + (text
    // height - 1) + 6 and y = bottom + 3 (the text height, not its width, is added to x).
    // Returns whether it drew. `from` and `to` are the visible span the label belongs to.
    static bool Draw2(QPainter& painter, const QDateTime& date, const QDateTime& from, const QDateTime& to,
                      int left, int bottom, int right, int threshold);
};

}  // namespace ts
}  // namespace gx
