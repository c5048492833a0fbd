// A price scale column at the left or right of the chart areas, drawn once per area with
// the area's scale engine and price range.
//
// Most repaints find the scales as they were: the drawn column is kept as a picture per area
// (one scale object draws that side of every area in turn) and blitted while nothing the
// drawing reads has changed.
#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QString>
#include <boost/shared_ptr.hpp>

#include "gx/PictureCache.h"
#include "gx/TextCache.h"

class QPainter;
class PFChartWidget;

namespace pf {
class ScaleEngine;
}

namespace gx {

class Area;
struct FindMinMax;

class LRScale {
public:
    static constexpr int nWidth = 50;

    // Font and background come from the widget when one is given.
    explicit LRScale(PFChartWidget* widget);

    void Resize(const QRect& rect) { rect_ = rect; }
    const QRect& Rect() const { return rect_; }
    bool IsVisible() const { return visible_; }
    void SetVisible(bool visible) { visible_ = visible; }
    const QFont& GetFont() const { return font_; }
    void SetFont(const QFont& font) { font_ = font; }
    const QColor& GetBackgroundColor() const { return background_; }
    void SetBackgroundColor(const QColor& color) { background_ = color; }

    int GetFontHeight(const QPainter& painter) const;
    // An even step for the range [min, max] with labels fontHeight + 5 pixels apart.
    float GetStepParam(float max, float min, int fontHeight) const;
    // Labels of the area's price range (0 .. 100 when the range has no data).
    void Draw(QPainter& painter, const FindMinMax& range, const boost::shared_ptr<pf::ScaleEngine>& engine,
              const boost::shared_ptr<Area>& area) const;

    // "%0.<decimals>f".
    static QString FormatPrice(double price, int decimals);
    // The decimals prices of an instrument are shown with, from the precision the host
    // reports: 4 while unknown (negative, or not a number), at most 10 whatever it says.
    static int PriceDecimals(double precision);

    // Forgets the kept pictures.
    void ClearPictures() const { pictures_.Clear(); }
    int PictureCount() const { return pictures_.Count(); }

private:
    // Fills the column and writes its labels, the painter clipped to the column.
    void DrawColumn(QPainter& painter, const QColor& pen, const FindMinMax& range,
                    const pf::ScaleEngine* engine) const;
    QByteArray Key(const QColor& pen, int labelHeight, const FindMinMax& range,
                   const pf::ScaleEngine* engine) const;
    // The label height of the scale's font on the painter's device.
    int LabelHeight(const QPainter& painter) const;

    PFChartWidget* widget_;
    QRect rect_;
    bool visible_ = true;
    QFont font_;
    QColor background_;
    // Price labels laid out once for the scale's font.
    mutable TextCache labels_;
    // Drawn columns, one per area and state.
    mutable PictureCache pictures_;
    // The font's key and label height, worked out again only when the font or the device's
    // resolution changes: on most paints they are all that changes nothing.
    struct FontMeasure {
        QFont font;
        int dpiX = 0;
        int dpiY = 0;
        int labelHeight = 0;
        QByteArray key;
    };
    mutable FontMeasure measure_;
};

}  // namespace gx
