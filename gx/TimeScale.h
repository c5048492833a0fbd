// The strip under the chart areas that labels the positions (columns, bricks, Kagi turns)
// with dates and times.
//
// Positions are not evenly spaced in time, so the scale keeps the time of every position
// in a sorted vector, filled from the data of the chart's time line, and maps between
// screen x, position and time through the scale engine of that line's area.
#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <vector>

#include "gx/PictureCache.h"
#include "gx/TextCache.h"

class QPainter;
class PFChartWidget;

namespace pf {
class ScaleEngine;
}

namespace gx {

class TimeScale {
public:
    // How GetTimePos searches: types 0 to 2 find the first position not before the time
    // (ceiling), types above 2 the last position not after it (floor).
    enum eDateType { DateSecond = 0, DateMinute = 1, DateHour = 2, DateDay = 3, DateMonth = 4, DateYear = 5 };

    // `color` is the third colour (the grid colour). Background, text and grid colours and
    // the font are taken from the widget when one is given.
    TimeScale(PFChartWidget* widget, const boost::shared_ptr<pf::ScaleEngine>& engine, unsigned int color);

    // Full widget width, bottom edge one pixel above the widget's time scroll bar.
    void Resize();
    void SetFont(const QFont& font);
    // Date-and-time labels for 'I' (intraday), date labels for every other period type.
    void SetFormat(char periodType);
    bool IsDateOnly() const { return dateOnly_; }

    void AddTime(long time);
    void DelTime(int index);
    // Replaces the time of an existing position (the newest column's time may change).
    void SetTime(int index, long time);
    void Clear() { times_.clear(); }
    int Count() const { return static_cast<int>(times_.size()); }
    const std::vector<std::int32_t>& Times() const { return times_; }

    // The time of a position (no range check).
    long GetPosTime(int index) const { return times_[static_cast<std::size_t>(index)]; }
    // Position under a screen point: first visible + UnTranslateX(x - engine left) - 1.
    int GetPointPos(const QPoint& point) const;
    // The time at the point's position, the position clamped to 0 .. count - 1; 0 when empty.
    long GetPointTime(const QPoint& point) const;
    // Binary search of a time (see eDateType); 0 on an empty scale.
    int GetTimePos(long time, eDateType type) const;
    // GetTimePos, continued past the last time in steps of `stepSeconds` (the time line's
    // time step): a time after the last one gives count - 1 + the number of steps.
    int GetVirtualTimePos(long time, eDateType type, int stepSeconds) const;

    // The strip as drawn last time while nothing it shows has changed (the window's
    // repaint timer), else drawn anew.
    void Draw(QPainter& painter) const;
    int PictureCount() const { return pictures_.Count(); }

    const QRect& Rect() const { return rect_; }
    int Height() const { return rect_.height(); }
    const boost::shared_ptr<pf::ScaleEngine>& GetEngine() const { return engine_; }
    void SetEngine(const boost::shared_ptr<pf::ScaleEngine>& engine) { engine_ = engine; }
    void SetColors(const QColor& background, const QColor& text, const QColor& grid);
    const QColor& GetBackgroundColor() const { return background_; }
    const QColor& GetTextColor() const { return text_; }
    const QColor& GetGridColor() const { return grid_; }
    const QFont& GetFont() const { return font_; }

private:
    bool dateOnly_ = true;
    PFChartWidget* widget_;
    QColor background_;
    QColor text_;
    QColor grid_;
    QFont font_;
    QRect rect_;
    int flag_ = 1;
    boost::shared_ptr<pf::ScaleEngine> engine_;
    std::vector<std::int32_t> times_;
    // Label texts laid out once for the scale's font.
    mutable TextCache labels_;
    // The strip drawn, under everything it shows: the one the window shows now.
    mutable PictureCache pictures_{1};

    void DrawStrip(QPainter& painter) const;
    QByteArray Key() const;
};

}  // namespace gx
