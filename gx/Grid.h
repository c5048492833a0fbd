// The grid behind the figures of every area: the area's background, horizontal lines at
// box steps and one vertical line per position column.
#pragma once

#include <QColor>
#include <QRect>
#include <QImage>
#include <QVector>
#include <climits>
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

    // The lines of one data rectangle, as a paint found them, and a number that changes
    // whenever they or the colours do.
    struct Rows {
        QRect data;
        QVector<int> xs;  // column lines
        QVector<int> ys;  // price lines
        QColor color;
        QColor line;
        quint64 version = 0;
        // Paints the rows from `fromRow` down (widget rows) into `image`, whose first row is
        // `fromRow` and whose columns are those of `data`.
        void Paint(QImage& image, int fromRow) const;
    };

    // Fills the engine's data rectangle (DataRect) with the background colour, then the
    // lines when the grid is shown. With the grid shown, the rows from `keepFrom` down are
    // left to the caller, who gets the lines to paint them (Rows::Paint); a version of 0 when
    // the grid is not shown (then every row is filled).
    Rows Draw(QPainter& painter, const FindMinMax& range, const boost::shared_ptr<pf::ScaleEngine>& engine,
              int keepFrom = INT_MAX) const;
    // The engine keeps its rectangle 2 pixels in on both sides; the area's data rectangle is
    // that rectangle with the insets given back.
    static QRect DataRect(const pf::ScaleEngine& engine);
    // Forgets the pictures of rectangles not drawn since the last call: after a paint of
    // every area, those of areas since moved, resized or closed.
    void ForgetUnused() const;

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
    // The grid of each data rectangle as a picture of the rows the grid paints itself, one
    // per area of the window (they share this grid): made again only when that rectangle's
    // lines, the colours or those rows change.
    struct Picture {
        Rows rows;
        int end;  // the picture holds rows data.top() .. end - 1
        QImage image;
        bool used;  // drawn since the last ForgetUnused
    };
    static constexpr std::size_t kMaxPictures = 8;
    mutable std::vector<Picture> pictures_;  // most recently drawn first
};

}  // namespace gx
