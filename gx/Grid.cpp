#include "gx/Grid.h"

#include <QLine>
#include <QPainter>
#include <QPen>
#include <QVector>
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>

#include "data/ScaleEngine.h"
#include "gx/FindMinMax.h"

namespace gx {

namespace {

// Neighbouring price lines never come closer than this.
const int kMinLineSpacing = 5;

// Without a usable box size the price range is cut into this many boxes.
const int kRangeBoxes = 10;

// Rows of the horizontal lines, from the area's bottom up. Prices run from the range's
// minimum in steps of one box, so the lines fall on the box edges of the figures; without a
// usable box size the step is the range over kRangeBoxes. Lines closer than
// kMinLineSpacing give way to lines at least a tenth of the area's height apart: a whole
// number of boxes from the minimum (itself a box edge: the range is padded by one box), so
// that figures still fill the space between lines box for box. Without a usable price
// transform (a flat or broken range) the rows are spaced in pixels alone. The number of
// rows is bounded by the height, never by the range.
void AddPriceLines(QVector<QLine>& lines, const QRect& data, const FindMinMax& range, const pf::ScaleEngine& engine) {
    const int top = data.top();
    const int bottom = data.bottom();
    const long long height = static_cast<long long>(bottom) - top + 1;
    if (height < 1 || data.width() < 1) return;

    const double spacing = std::max(static_cast<double>(kMinLineSpacing), height / 10.0);
    const double yFactor = engine.GetYFactor();
    const double minPrice = range.minPrice;
    bool priced = yFactor > 0.0 && std::isfinite(yFactor) && std::isfinite(minPrice);
    const double box = range.boxSize;
    const bool boxUsable = box > 0.0 && std::isfinite(box);
    double step = boxUsable ? box : (static_cast<double>(range.maxPrice) - minPrice) / kRangeBoxes;
    if (priced && (!(step > 0.0) || !std::isfinite(step) || step * yFactor < kMinLineSpacing)) {
        // Float box sizes carry noise in their last digits: a count that is whole up to
        // that noise is not raised by one more box.
        step = boxUsable ? std::ceil(spacing / (box * yFactor) - 1e-6) * box : spacing / yFactor;
        priced = step > 0.0 && std::isfinite(step);
    }

    long long lastRow = static_cast<long long>(bottom) + 1 + kMinLineSpacing;
    const long long maxLines = height / kMinLineSpacing + 2;
    for (long long k = 0; k <= maxLines; ++k) {
        const double price = minPrice + k * step;
        // A price beyond the float range lies above any area.
        if (priced && !(std::fabs(price) <= FLT_MAX)) break;
        const long long row = priced ? engine.TranslateY(static_cast<float>(price))
                                     : bottom + 1LL - static_cast<long long>(std::floor(k * spacing + 0.5));
        if (row < top) break;
        // The minimum itself lies on the row below the area; rounding of neighbouring rows
        // must not bring two lines closer than the minimum spacing.
        if (row > bottom || lastRow - row < kMinLineSpacing) continue;
        lines.push_back(QLine(data.left(), static_cast<int>(row), data.right(), static_cast<int>(row)));
        lastRow = row;
    }
}

// One vertical line per visible column at the column's left edge, placed as the figure
// renderers place their columns: x advances by the column width from the engine's left
// edge and is rounded to the nearest pixel. Columns narrower than a pixel cover every pixel
// between the first and the last column, which is drawn as such, so the cost is bounded by
// the width, never by the column count.
void AddColumnLines(QVector<QLine>& lines, const QRect& data, const pf::ScaleEngine& engine) {
    const int columns = engine.GetColumnCount();
    if (columns <= 0 || data.height() < 1) return;
    const float step = engine.GetXStep(static_cast<float>(columns));
    const int top = data.top();
    const int bottom = data.bottom();
    if (step >= 1.0f) {
        float x = static_cast<float>(engine.GetLeft());
        for (int i = 0; i < columns; ++i, x += step) {
            const int px = pf::TruncToPixel(x + 0.5L);
            lines.push_back(QLine(px, top, px, bottom));
        }
        return;
    }
    if (!(step >= 0.0f)) return;
    const int first = pf::TruncToPixel(engine.GetLeft() + 0.5L);
    const int last = pf::TruncToPixel(engine.GetLeft() + (columns - 1) * static_cast<long double>(step) + 0.5L);
    for (int px = std::max(first, data.left()); px <= std::min(last, data.right()); ++px)
        lines.push_back(QLine(px, top, px, bottom));
}

}  // namespace

Grid::Grid() : lineColor_(236, 233, 216), backgroundColor_(Qt::white) {}

QRect Grid::DataRect(const pf::ScaleEngine& engine) { return engine.GetRect().adjusted(-2, 0, 2, 0); }

void Grid::Rows::Paint(QImage& image, int fromRow) const {
    const int width = std::min(image.width(), data.width());
    if (width < 1) return;
    QVector<QRgb> row(width, color.rgb());
    for (int x : xs)
        if (x >= data.left() && x - data.left() < width) row[x - data.left()] = line.rgb();
    const QVector<QRgb> full(width, line.rgb());
    const std::size_t bytes = sizeof(QRgb) * static_cast<std::size_t>(width);
    for (int y = 0; y < image.height(); ++y) std::memcpy(image.scanLine(y), row.constData(), bytes);
    for (int y : ys)
        if (y >= fromRow && y - fromRow < image.height())
            std::memcpy(image.scanLine(y - fromRow), full.constData(), bytes);
}

void Grid::ForgetUnused() const {
    pictures_.erase(std::remove_if(pictures_.begin(), pictures_.end(), [](const Picture& p) { return !p.used; }),
                    pictures_.end());
    for (Picture& p : pictures_) p.used = false;
}

Grid::Rows Grid::Draw(QPainter& painter, const FindMinMax& range,
                       const boost::shared_ptr<pf::ScaleEngine>& engine, int keepFrom) const {
    if (!engine) return Rows();
    const QRect data = DataRect(*engine);
    if (data.isEmpty()) return Rows();
    painter.save();
    painter.setClipRect(data);
    if (!shown_) {
        painter.fillRect(data, backgroundColor_);
        painter.restore();
        return Rows();
    }
    // The grid (background, column lines, price lines) is kept as a picture of the rows it
    // paints itself and made again only when the rectangle, the lines or the colours change:
    // a repaint of the same view copies it instead of drawing every line again.
    QVector<QLine> lines;
    AddColumnLines(lines, data, *engine);
    QVector<int> xs;
    xs.reserve(lines.size());
    for (const QLine& l : lines) xs.push_back(l.x1());
    lines.clear();
    AddPriceLines(lines, data, range, *engine);
    QVector<int> ys;
    ys.reserve(lines.size());
    for (const QLine& l : lines) ys.push_back(l.y1());
    const int end = static_cast<int>(
        std::max<long long>(data.top(), std::min<long long>(data.bottom() + 1LL, static_cast<long long>(keepFrom))));
    auto kept =
        std::find_if(pictures_.begin(), pictures_.end(), [&data](const Picture& p) { return p.rows.data == data; });
    const bool same = kept != pictures_.end() && kept->rows.xs == xs && kept->rows.ys == ys &&
                      kept->rows.color == backgroundColor_ && kept->rows.line == lineColor_;
    if (!same || kept->end != end) {
        static quint64 versions = 0;
        Rows rows = same ? kept->rows : Rows{data, xs, ys, backgroundColor_, lineColor_, ++versions};
        if (kept != pictures_.end()) pictures_.erase(kept);
        if (pictures_.size() >= kMaxPictures) pictures_.pop_back();
        Picture picture{rows, end, QImage(data.width(), end - data.top(), QImage::Format_RGB32), true};
        rows.Paint(picture.image, data.top());
        pictures_.insert(pictures_.begin(), std::move(picture));
    } else if (kept != pictures_.begin()) {
        std::rotate(pictures_.begin(), kept, kept + 1);
    }
    Picture& picture = pictures_.front();
    picture.used = true;
    if (!picture.image.isNull()) painter.drawImage(data.topLeft(), picture.image);
    painter.restore();
    return picture.rows;
}

}  // namespace gx
