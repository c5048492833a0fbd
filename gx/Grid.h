// The grid behind the figures of every area: the area's background, horizontal lines at
// box steps and one vertical line per position column.
#pragma once

#include <QColor>
#include <QRect>
#include <QImage>
#include <QVector>
#include <vector>
#include <boost/shared_ptr.hpp>

class QPainter;

namespace pf {
class ScaleEngine;
}

namespace gx {

struct FindMinMax;

class Grid {
public:
    Grid();

    // Fills the engine's data rectangle (the 2-pixel insets given back) with the background
    // colour, then the lines when the grid is shown.
    void Draw(QPainter& painter, const FindMinMax& range, const boost::shared_ptr<pf::ScaleEngine>& engine) const;

    const QColor& GetLineColor() const { return lineColor_; }
    void SetLineColor(const QColor& c) { lineColor_ = c; }
    const QColor& GetBackgroundColor() const { return backgroundColor_; }
    void SetBackgroundColor(const QColor& c) { backgroundColor_ = c; }
    bool IsShown() const { return shown_; }
    void SetShown(bool shown) { shown_ = shown; }

private:
    QColor lineColor_;
    QColor backgroundColor_;
    bool shown_ = true;
    // The grid of each data rectangle as a picture, one per area of the window (they share
    // this grid): made again only when that rectangle's lines or the colours change.
    struct Picture {
        QRect rect;
        QVector<int> xs;
        QVector<int> ys;
        QColor color;
        QColor line;
        QImage image;
    };
    static constexpr std::size_t kMaxPictures = 8;
    mutable std::vector<Picture> pictures_;  // most recently drawn first
};

}  // namespace gx
