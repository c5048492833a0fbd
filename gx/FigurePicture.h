// The picture of one line's figures, kept between paints.
//
// The chart type interface's timer repaints every chart window each second, and most of
// those paints find nothing new. Drawing a line's boxes, bricks or strokes again is most of
// the cost of such a paint, so the line keeps what its renderer drew as an image of its data
// rectangle and blits it while nothing the renderer reads has changed: the scale engine's
// transform, the rectangle, the array (its header, the records from the first visible one
// to the last drawn, and every replacement of it), the painter's render hints and pixel
// ratio. A selected line is always drawn afresh, since its pen changes from one paint to
// the next; so is a paint through a painter that scales, rotates, blends or antialiases
// (the chart's own painters do none of these; a blended copy could differ in the last bit).
//
// When only the newest records changed (a quote grew the newest column or added one) and
// the view stayed, or moved on by whole pixels, the picture is brought up to date by
// drawing again just the pixel columns those records reach (see Update).
//
// A line's studies join the picture while none is being placed or moved (see Line::Draw).
//
// The picture is drawn from the painter's own state into a transparent image and blitted
// at whole pixels, so the window looks exactly as when drawn directly.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>
#include <functional>

#include "data/PointData.h"

class QPainter;
struct fxDataPointArray;

namespace gx {

class FigurePicture {
public:
    // Draws the renderer's figures of `array` inside `rect` (clipped to it), from the kept
    // picture when it still shows them. `generation` changes whenever the line's array is
    // replaced.
    void Draw(QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
              bool selected, unsigned generation);
    // The same, with `overlay` drawn over the figures (the line's studies), clipped to
    // OverlayRect(rect). `overlayKey` names everything the overlay reads; the picture then
    // holds the overlay too.
    void Draw(QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
              bool selected, unsigned generation, const QByteArray& overlayKey,
              const std::function<void(QPainter&)>& overlay);
    // Where an overlay may draw: the rectangle and kOverlayMargin pixels around it, room for
    // the markers of a selected study at the rectangle's edge.
    static QRect OverlayRect(const QRect& rect) {
        return rect.adjusted(-kOverlayMargin, -kOverlayMargin, kOverlayMargin, kOverlayMargin);
    }
    // Draws an overlay of `rect` directly, clipped as in a picture.
    static void DrawOverlay(QPainter& painter, const QRect& rect, const std::function<void(QPainter&)>& overlay);
    // Forgets the picture.
    void Clear();

    static constexpr int kOverlayMargin = 8;

    // Pictures are kept unless switched off (tests compare both ways).
    static void SetEnabled(bool enabled);
    static bool Enabled();

private:
    // What the pixels of a picture were drawn from.
    struct Snapshot {
        QByteArray view;     // the rectangle, the engine's transform and columns, the painter, the header
        int first = 0;       // the records drawn: first .. end - 1
        int end = 0;
        QByteArray records;  // their bytes
        unsigned generation = 0;
        const void* array = nullptr;
        const void* points = nullptr;
        QByteArray overlay;  // the overlay's key; empty without one
        int entry = 0;       // what the first record took over from those before it
    };

    // Whether the picture can stand for drawing directly through this painter.
    bool Usable(const QPainter& painter, const QRect& rect, const pf::PointData& renderer,
                const fxDataPointArray* array, bool selected) const;
    // Forgets the picture and draws the figures straight through the painter.
    void DrawDirectly(QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array);
    // Draws the figures, then the overlay if there is one, into a new picture covering `area`.
    void Render(const QPainter& painter, const QRect& rect, const QRect& area, pf::PointData& renderer,
                fxDataPointArray* array, const std::function<void(QPainter&)>* overlay);
    Snapshot Describe(const QPainter& painter, const QRect& rect, const pf::PointData& renderer,
                      const fxDataPointArray* array, unsigned generation) const;
    bool Same(const Snapshot& now) const;
    // Brings a picture without overlay up to `now` by drawing only what changed: the records
    // from the first one that differs, and, when the view moved on by whole pixels, what
    // comes into view at the right after the picture is scrolled. False when that cannot
    // give exactly the pixels of a new picture.
    bool Update(const QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
                const Snapshot& now);
    // Draws the picture's columns x0 .. x1 (painter coordinates) anew.
    void Redraw(const QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
                const Snapshot& now, int x0, int x1);

    QImage image_;
    QRect area_;  // where the picture goes, in the painter's coordinates
    Snapshot kept_;
    pf::PointData::DrawState state_{};
};

}  // namespace gx
