// A few opaque pictures kept between paints, each under a key of everything its drawing
// reads, the least recently used dropped first.
//
// The chart window repaints every second and most of those paints find nothing new. A part
// that fills its whole rectangle before drawing anything else (a price scale) can be kept as
// an opaque image of that rectangle and blitted at whole pixels: the window then holds
// exactly the pixels drawing it directly would have left. That holds only for a raster
// painter that neither scales, rotates, blends nor antialiases, on a device of pixel ratio 1
// whose font resolution the image can take on; Usable() tells, and the caller draws directly
// otherwise.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QMargins>
#include <QRect>
#include <functional>
#include <vector>

class QColor;
class QPainter;

namespace pf {
class ScaleEngine;
}

namespace gx {

class PictureCache {
public:
    static constexpr int kDefaultEntries = 8;

    explicit PictureCache(int maxEntries = kDefaultEntries) : maxEntries_(maxEntries < 1 ? 1 : maxEntries) {}

    // Whether a picture blitted through `painter` gives the same pixels as drawing through it.
    static bool Usable(const QPainter& painter);
    // Room to keep around a picture of `rect`: the painter's device around it, up to `margin`
    // pixels each side. Antialiased text is blended along slightly different paths where its
    // glyphs meet the clip or the device's edge; a picture drawn with the same room around
    // its clip as the window has meets them exactly where the window does. False (draw
    // directly) when the device clips `rect` other than by its edges.
    static bool Surround(const QPainter& painter, const QRect& rect, int margin, QMargins* around);
    // What places the columns on the screen: the engine's left and right edges, its x
    // transform and its number of columns (not which column comes first).
    static void AppendColumns(QByteArray& key, const pf::ScaleEngine& engine);
    // What of the painter's device and state the drawing may read, for the key.
    static void AppendPainter(QByteArray& key, const QPainter& painter);
    // Starts a picture's painter from the state of the window's painter, so that what is
    // drawn into the picture comes out as it would on the window.
    static void CopyState(QPainter& picture, const QPainter& painter);
    // Gives `image` the dots per inch of the painter's device, so that fonts resolve to the
    // same pixel sizes in it.
    static void MatchResolution(QImage& image, const QPainter& painter);

    template <typename T>
    static void Append(QByteArray& key, T value) {  // by value: record fields may be packed
        key.append(reinterpret_cast<const char*>(&value), int(sizeof value));
    }

    // The picture kept under `key`, or null; a hit becomes the most recently used.
    const QImage* Find(const QByteArray& key);
    // A new opaque picture (no alpha channel: it is blitted as a plain copy) of `size` under
    // `key` for the caller to draw, its dots per metre
    // those of the painter's device so that fonts resolve to the same pixel sizes. Drops the
    // least recently used picture when full.
    QImage& Make(const QByteArray& key, const QSize& size, const QPainter& painter);
    // Draws a part that fills all of `rect` with the opaque `fill` before drawing anything
    // else: from the picture kept under `key` (the part's own state; the painter's is added
    // here), or by `draw` into a new picture, `margin` pixels of room around it (see
    // Surround). `draw` replaces any clip by `rect`; so does the blit. False
    // when a picture cannot stand for drawing through this painter: the caller draws directly.
    bool DrawKept(QPainter& painter, const QRect& rect, int margin, QByteArray key, const QColor& fill,
                  const std::function<void(QPainter&)>& draw);
    // Forgets every picture.
    void Clear() { entries_.clear(); }
    int Count() const { return int(entries_.size()); }

private:
    struct Entry {
        QByteArray key;
        QImage image;
    };
    int maxEntries_;
    std::vector<Entry> entries_;  // most recently used first
};

}  // namespace gx
