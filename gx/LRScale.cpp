#include "gx/LRScale.h"

#include <QtMath>

#include <QByteArray>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cfloat>
#include <cmath>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gx/FigurePicture.h"
#include "gx/FindMinMax.h"
#include "module/CModule.h"
#include "util/QtCompat.h"

namespace gx {

namespace {

// Font element whose family the price scales use.
const font::elementCode kScaleFontElement = font::elementCode(12);
const int kScaleFontPointSize = 8;
// Labels start this far right of the column's left edge.
const int kLabelIndent = 5;
// Space kept between two labels on top of the font height.
const int kLabelGap = 5;
// Decimals never go beyond these, whatever the host reports.
const int kDefaultPriceDecimals = 4;
const int kMaxPriceDecimals = 10;
const int kMaxFormatDecimals = 64;

// Prices are compared at a resolution of 1/10000: the float prices of the range carry noise
// in their last digits that must not add or drop a label.
double Ticks(double price) { return std::floor(price * 10000.0 + 0.5); }

// Writes the labels of one scale column from the bottom up. Each label stands on its row
// (the row is the text's baseline) and is moved inside the column where it would stick out;
// a label that would overlap the one written before it is left out, so the text stays
// readable however dense the rows are.
class LabelColumn {
public:
    LabelColumn(QPainter& painter, const QRect& column, TextCache& cache)
        : painter_(painter), column_(column), metrics_(painter.fontMetrics()),
          height_(pf::FontHeight(metrics_)), ascent_(metrics_.ascent()), lastTop_(column.bottom() + 1), cache_(cache) {}

    int LabelHeight() const { return height_; }

    // Rows from one above the column's top to one below its bottom are labelled (the ends
    // of a range fall just outside: its minimum maps to the row below the column); others
    // belong to prices outside the column.
    void Write(int row, const QString& text) {
        if (height_ < 1 || height_ > column_.height()) return;
        if (row < column_.top() - 1 || row > column_.bottom() + 1) return;
        int top = row - ascent_;
        top = std::max(top, column_.top());
        top = std::min(top, column_.bottom() + 1 - height_);
        if (top + height_ > lastTop_) return;
        const QStaticText& layout = cache_.Get(text, painter_.font());
        const int width = qCeil(layout.size().width());
        int x = column_.left() + kLabelIndent;
        if (x + width > column_.right() + 1) x = std::max(column_.left(), column_.right() + 1 - width);
        painter_.drawStaticText(QPoint(x, top), layout);
        lastTop_ = top;
    }

private:
    QPainter& painter_;
    const QRect column_;
    const QFontMetrics metrics_;
    const int height_;
    const int ascent_;
    int lastTop_;  // top row of the last label written
    TextCache& cache_;
};

// The labels of one scale column: a percentage ruler without data, otherwise prices at even
// steps from the bottom of the range to its top, each on the row of its price.
void DrawLabels(QPainter& painter, const QRect& column, const FindMinMax& range, const pf::ScaleEngine* engine,
                TextCache& cache) {
    LabelColumn labels(painter, column, cache);
    const int labelHeight = labels.LabelHeight();
    if (labelHeight < 1 || labelHeight > column.height()) return;

    if (!range.HasData()) {
        const int spacing = column.height() / 10;
        for (int i = 0; i <= 10; ++i) labels.Write(column.bottom() - i * spacing, QString::number(i * 10));
        return;
    }

    const double minPrice = range.minPrice;
    const double maxPrice = range.maxPrice;
    if (!engine || !std::isfinite(minPrice) || !std::isfinite(maxPrice) || maxPrice < minPrice) return;

    // The step is worked out in points (units of the instrument's last decimal): the points
    // that fit into one label spacing at the current box height, rounded down to whole tens
    // and raised by ten, so that neighbouring labels never come closer than the spacing.
    const int decimals = LRScale::PriceDecimals(range.precision);
    const double pointsPerUnit = std::pow(10.0, decimals);
    const int spacing = labelHeight + kLabelGap;
    const int boxPixels = engine->TranslateY(range.maxPrice - range.boxSize) - engine->TranslateY(range.maxPrice);
    double stepPoints = 0.0;
    if (boxPixels > 0) {
        stepPoints = std::trunc(spacing * static_cast<double>(range.boxSize) * pointsPerUnit / boxPixels);
        stepPoints = std::floor(stepPoints / 10.0) * 10.0 + 10.0;
    }
    // No usable box height (a box below one pixel, no box size, a flat range).
    if (!(stepPoints > 0.0) || !std::isfinite(stepPoints))
        stepPoints = (decimals > 2 ? 0.005 : 0.5) * pointsPerUnit;

    // A range far wider than the step allows for (the fallback step over a wide range, a
    // broken range) would ask for more labels than the column can hold: the step then grows
    // by a whole multiple of itself, so labels stay on its multiples and the work stays
    // bounded by the column's height.
    const long long fit = column.height() / labelHeight + 2LL;
    const double count =
        (maxPrice * pointsPerUnit - std::floor(minPrice * pointsPerUnit / stepPoints) * stepPoints) / stepPoints;
    if (count > fit) stepPoints *= std::ceil(count / fit);
    if (!(stepPoints > 0.0) || !std::isfinite(stepPoints)) return;

    const double firstPoints = std::floor(minPrice * pointsPerUnit / stepPoints) * stepPoints;
    const double lastTicks = Ticks(maxPrice);
    for (long long k = 0; k <= fit + 1; ++k) {
        const double price = (firstPoints + k * stepPoints) / pointsPerUnit;
        if (Ticks(price) > lastTicks) break;
        // Only the first label may lie below the range, and beyond the float range it has no row.
        if (std::fabs(price) > FLT_MAX) continue;
        labels.Write(engine->TranslateY(static_cast<float>(price)), LRScale::FormatPrice(price, decimals));
    }
}

}  // namespace

LRScale::LRScale(PFChartWidget* widget) : widget_(widget), background_(QColor(0xffffff)) {
    const CModule* module = CModule::Current();
    font_ = QFont(module ? module->getFont(kScaleFontElement) : QString::fromLatin1("Arial"), kScaleFontPointSize);
    if (widget_) {
        font_ = widget_->GetAreasFont();
        background_ = widget_->GetAreasColor();
    }
}

int LRScale::GetFontHeight(const QPainter& painter) const { return pf::FontHeight(painter.fontMetrics()); }

float LRScale::GetStepParam(float max, float min, int fontHeight) const {
    const float margin = (max - min) * 0.02f;
    // A scale lower than one label spacing still holds one label.
    const long long spacing = std::max(1LL, static_cast<long long>(fontHeight) + kLabelGap);
    const long long slotCount = std::max(1LL, static_cast<long long>(rect_.height()) / spacing);
    const float raw = ((max - margin) - (min + margin)) / static_cast<float>(slotCount);
    // Also the answer for an empty, reversed or NaN range.
    if (!(raw > 0.0001f)) return 0.0001f;
    // The power of ten of raw's exponent truncated toward zero: below 1 this is the power
    // above raw, which the halving below may bring back down.
    float step = std::pow(10.0f, std::trunc(std::log10(raw)));
    if (raw > step) step *= 10.0f;
    if (step * 0.5f > raw) return step * 0.5f;
    return step;
}

int LRScale::PriceDecimals(double precision) {
    if (!(precision >= 0.0)) return kDefaultPriceDecimals;
    return precision > kMaxPriceDecimals ? kMaxPriceDecimals : static_cast<int>(precision);
}

QString LRScale::FormatPrice(double price, int decimals) {
    decimals = std::max(0, std::min(decimals, kMaxFormatDecimals));
    const QByteArray format = "%0." + QByteArray::number(decimals) + "f";
    return QString::asprintf(format.constData(), price);
}

void LRScale::DrawColumn(QPainter& painter, const QColor& pen, const FindMinMax& range,
                         const pf::ScaleEngine* engine) const {
    painter.setClipRect(rect_);
    painter.fillRect(rect_, background_);
    painter.setFont(font_);
    painter.setPen(pen);
    DrawLabels(painter, rect_, range, engine, labels_);
}

QByteArray LRScale::Key(const QColor& pen, int labelHeight, const FindMinMax& range,
                        const pf::ScaleEngine* engine) const {
    QByteArray key;
    key.reserve(160);
    PictureCache::Append(key, rect_);
    PictureCache::Append(key, background_.rgba64());
    PictureCache::Append(key, pen.rgba64());
    key.append(measure_.key).append('\0');
    PictureCache::Append(key, labelHeight);
    // What the labels read of the range.
    PictureCache::Append(key, range.minPrice);
    PictureCache::Append(key, range.maxPrice);
    PictureCache::Append(key, range.boxSize);
    PictureCache::Append(key, range.columnCount);
    PictureCache::Append(key, range.precision);
    // What TranslateY reads of the engine.
    PictureCache::Append(key, engine != nullptr);
    if (engine) {
        PictureCache::Append(key, engine->GetBottom());
        PictureCache::Append(key, engine->GetMinPrice());
        PictureCache::Append(key, engine->GetYFactor());
    }
    return key;
}

int LRScale::LabelHeight(const QPainter& painter) const {
    QPaintDevice* device = painter.device();
    const int dpiX = device->logicalDpiX(), dpiY = device->logicalDpiY();
    if (measure_.key.isEmpty() || dpiX != measure_.dpiX || dpiY != measure_.dpiY || !(font_ == measure_.font) ||
        pf::FontResolveMask(font_) != pf::FontResolveMask(measure_.font)) {
        measure_.font = font_;
        measure_.dpiX = dpiX;
        measure_.dpiY = dpiY;
        measure_.labelHeight = pf::FontHeight(QFontMetrics(font_, device));
        measure_.key = font_.key().toUtf8();
    }
    return measure_.labelHeight;
}

void LRScale::Draw(QPainter& painter, const FindMinMax& range, const boost::shared_ptr<pf::ScaleEngine>& engine,
                   const boost::shared_ptr<Area>&) const {
    if (!visible_) return;
    const QColor pen = widget_ ? widget_->GetAreasFontColor() : QColor(150, 150, 150);
    painter.save();
    // The picture is opaque only when the fill is.
    if (!FigurePicture::Enabled() || rect_.isEmpty() || background_.alpha() != 255 || !PictureCache::Usable(painter)) {
        pictures_.Clear();
        DrawColumn(painter, pen, range, engine.get());
        painter.restore();
        return;
    }
    const int labelHeight = LabelHeight(painter);
    // Glyphs reach at most about a label's height past the column.
    const auto draw = [&](QPainter& p) { DrawColumn(p, pen, range, engine.get()); };
    if (!pictures_.DrawKept(painter, rect_, 2 * labelHeight + 8, Key(pen, labelHeight, range, engine.get()),
                            background_, draw))
        draw(painter);
    painter.restore();
}

}  // namespace gx
