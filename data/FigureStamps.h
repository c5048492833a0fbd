// Pictures of single figures (an X box, an O box, a brick), drawn once and blitted for every
// figure that looks the same, and the test that leaves out figures that cannot paint a pixel.
//
// A box of a given width and height, pen and shape always paints the same pixels relative
// to its corner: the raster engine places lines and ellipses of whole-pixel coordinates
// the same wherever they lie, as long as nothing clips them. So the first box of a kind is
// drawn through the painter's own primitives into a small transparent image, and every later
// one is a blit of that image. The blit gives exactly the pixels of the primitives (opaque
// pens, no antialiasing, plain source-over) when the painter paints an image of 32-bit
// pixels without scaling; otherwise, and for every figure that reaches the clip or the
// device's edge, the figure is drawn through the painter as before.
//
// A renderer keeps one FigureStamps: a handful of pictures keyed by the shape, its size in
// pixels and every pen property, bounded by kMaxStamps.
#pragma once

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPoint>
#include <QRgb>
#include <QRect>
#include <algorithm>
#include <vector>

namespace pf {

class FigureStamps {
public:
    static constexpr int kMaxStamps = 32;

    // What decides a stamp's pixels besides its pen: the shape and its size.
    struct Shape {
        int kind;    // the renderer's own numbering of its shapes
        int width;   // signed sizes as the shape's corners give them
        int height;
        bool operator==(const Shape& o) const { return kind == o.kind && width == o.width && height == o.height; }
    };

    // The pixels a figure with corners (x1, y1) and (x2, y2) can paint with a pen of
    // `penWidth`: the rectangle they span, `penWidth` + 1 pixels more on every side (room
    // for the pen, its caps and the engine's rounding).
    static QRect Reach(int x1, int y1, int x2, int y2, int penWidth = 1) {
        const int m = penWidth + 1;
        return QRect(QPoint(std::min(x1, x2) - m, std::min(y1, y2) - m), QPoint(std::max(x1, x2) + m, std::max(y1, y2) + m));
    }

    // Stamps are used, and figures that cannot show left out, unless switched off (tests
    // compare with drawing every figure through the painter).
    static void SetEnabled(bool enabled);
    static bool Enabled();

    // Starts a Draw through `painter`: where the painter can paint, and whether a stamp can
    // stand for drawing through it.
    void Begin(const QPainter& painter);

    // Whether anything of a figure whose pixels all lie in `reach` can show.
    bool Shows(const QRect& reach) const {
        // Tested inline for valid rectangles: a paint asks it for every box.
        if (!reach.isValid() || !visible_.isValid()) return reach.intersects(visible_);
        return reach.left() <= visible_.right() && visible_.left() <= reach.right() && reach.top() <= visible_.bottom() &&
               visible_.top() <= reach.bottom();
    }

    // Takes the pen of the figures that follow. The painter gets it when a figure is drawn
    // through it: blitted figures need no pen, and setting one costs more than a blit.
    void UsePen(const QPen& pen);

    // Paints a figure whose pixels all lie in `reach`, with the pen of UsePen: `draw(painter,
    // offset)` draws it through the painter's primitives, moved by `offset`.
    // A figure that cannot show is left out, and so is one exactly like the figure painted
    // just before it (painting the same opaque pixels again changes nothing).
    template <class Draw>
    void Paint(QPainter& painter, const Shape& shape, const QRect& reach, Draw draw) {
        if (!Shows(reach)) return;
        if (!enabled_) {
            ApplyPen(painter);
            draw(painter, QPoint());
            return;
        }
        const bool ownPen = penKey_.style < 0;
        if (!ownPen && havePrevious_ && reach == previousReach_ && shape == previousShape_ && penKey_ == previousPen_) return;
        havePrevious_ = true;
        previousReach_ = reach;
        previousShape_ = shape;
        previousPen_ = penKey_;
        if (!usable_ || ownPen || !Inside(reach)) {
            ApplyPen(painter);
            draw(painter, QPoint());
            return;
        }
        const Stamp* stamp = Find(shape, reach.size());
        if (!stamp) {
            Stamp& made = Make(shape, reach.size());
            QPainter p(&made.image);
            p.setPen(pen_);
            draw(p, -reach.topLeft());
            p.end();
            Finish(made);
            stamp = &made;
        }
        Blit(painter, *stamp, reach.topLeft());
    }

    int Count() const { return int(stamps_.size()); }

private:
    // What of a renderer's pen (a solid colour in one of Qt's own dash patterns) decides
    // pixels.
    struct PenKey {
        QRgb rgba = 0;
        int style = 0;
        qreal width = 0;
        int cap = 0;
        int join = 0;
        bool operator==(const PenKey& o) const {
            return rgba == o.rgba && style == o.style && width == o.width && cap == o.cap && join == o.join;
        }
    };
    // One opaque pixel of a stamp.
    struct Dot {
        int x, y;  // from the stamp's corner
        QRgb rgb;
    };
    struct Stamp {
        Shape shape;
        QSize size;
        PenKey pen;
        QImage image;
        // Opaque pixels only: its pixels, written straight into the device's image.
        bool solid = false;
        std::vector<Dot> dots;
    };
    void ApplyPen(QPainter& painter) {
        if (penApplied_) return;
        painter.setPen(pen_);
        penApplied_ = true;
    }
    // Whether `reach` lies within inside_.
    bool Inside(const QRect& reach) const {
        if (!reach.isValid() || !inside_.isValid()) return inside_.contains(reach);
        return reach.left() >= inside_.left() && reach.right() <= inside_.right() && reach.top() >= inside_.top() &&
               reach.bottom() <= inside_.bottom();
    }
    const Stamp* Find(const Shape& shape, const QSize& size);
    Stamp& Make(const Shape& shape, const QSize& size);
    // Takes the pixels of a stamp just drawn.
    static void Finish(Stamp& stamp);
    void Blit(QPainter& painter, const Stamp& stamp, const QPoint& corner);

    static bool enabled_;
    bool usable_ = false;
    QRect visible_;  // what the painter can paint, in its coordinates
    QRect inside_;   // where a figure is clipped by nothing
    // The image the painter paints (its pixels as the painter writes them), and where the
    // painter's coordinates put their origin on it.
    uchar* pixels_ = nullptr;
    qsizetype bytesPerLine_ = 0;
    QPoint origin_;
    std::vector<Stamp> stamps_;
    std::size_t last_ = 0;  // the stamp found last
    bool havePrevious_ = false;
    QRect previousReach_;
    Shape previousShape_{0, 0, 0};
    PenKey previousPen_;
    QPen pen_;
    PenKey penKey_;
    bool penApplied_ = false;  // whether the painter has pen_
};

}  // namespace pf
