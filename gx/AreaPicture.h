// One opaque picture of an area's grid with its lines' figures over it, kept between paints.
//
// A repaint with nothing new would copy the area's grid and then blend every line's
// transparent figure picture over it; blending costs several times a copy. The area instead
// copies one picture that holds them already blended, made again when the grid's lines or
// any line's picture change (each QImage's cache key changes with every change of its
// pixels). The grid keeps no picture of these rows: they are painted straight into this one.
//
// The caption strip at the top of the area is left out: the caption is drawn between the grid
// and the figures, so its rows get the grid and the figures as before, and so do the margins
// around the area where a line's studies reach. Below the caption nothing but the grid and
// the figures paints, in that order, as long as no line is drawn directly (a selected one,
// or one whose study is being placed or moved) and no background image or frame lies
// between them; Composable() tells.
//
// While an area draws its layers it collects: a line's picture is offered here instead of
// being blitted (Offer), and End() paints the whole at once.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <vector>

#include "gx/Grid.h"

class QPainter;

namespace gx {

class Area;

class AreaPicture {
public:
    // Whether the figures of `area` can be painted through a picture kept with its grid, on
    // this painter: every line of the area drawn from its kept picture (its studies with
    // it), nothing else in the area's rows below the caption.
    static bool Composable(const QPainter& painter, const Area& area);

    // Starts collecting the lines' pictures over the grid's rows from `bodyTop` down (the
    // grid of `data` painted those above them).
    void Begin(const Grid::Rows& grid, const QRect& data, int bodyTop);
    // Whether Begin was called and End not yet.
    bool Collecting() const { return collecting_ == this; }
    // Stops collecting and paints: the kept picture of the rows from bodyTop (made again if
    // any part changed), then each line's picture around those rows.
    void End(QPainter& painter);
    // Takes a line's picture, to be painted at `at`, while an area collects; false otherwise
    // (the line blits it itself).
    static bool Offer(const QImage& picture, const QPoint& at);

private:
    struct Offered {
        const QImage* picture;
        QPoint at;
    };
    static AreaPicture* collecting_;

    Grid::Rows grid_;
    QRect data_;
    int bodyTop_ = 0;
    std::vector<Offered> offered_;
    QImage image_;
    QByteArray key_;  // what image_ holds
};

}  // namespace gx
