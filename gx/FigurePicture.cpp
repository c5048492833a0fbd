#include "gx/FigurePicture.h"

#include <QPaintDevice>
#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>

#include "abi/records/dpa_records.h"
#include "data/ScaleEngine.h"

namespace gx {

namespace {

bool g_enabled = true;

template <typename T>
void Append(QByteArray& key, T value) {  // by value: record fields are packed
    key.append(reinterpret_cast<const char*>(&value), int(sizeof value));
}

}  // namespace

void FigurePicture::SetEnabled(bool enabled) { g_enabled = enabled; }

bool FigurePicture::Enabled() { return g_enabled; }

void FigurePicture::Clear() {
    image_ = QImage();
    key_.clear();
}

QByteArray FigurePicture::Key(const QPainter& painter, const QRect& rect, const pf::PointData& renderer,
                              const fxDataPointArray* array, unsigned generation) const {
    QByteArray key;
    const pf::ScaleEngine& e = *renderer.GetEngine();
    Append(key, rect);
    Append(key, e.GetLeft());
    Append(key, e.GetTop());
    Append(key, e.GetRight());
    Append(key, e.GetBottom());
    Append(key, e.GetX0());
    Append(key, e.GetX1());
    Append(key, e.GetMinPrice());
    Append(key, e.GetMaxPrice());
    Append(key, e.GetXFactor());
    Append(key, e.GetYFactor());
    Append(key, e.GetColumnCount());
    Append(key, e.GetFirstColumn());
    Append(key, e.GetFlag());
    Append(key, int(painter.renderHints()));
    Append(key, painter.device() ? painter.device()->devicePixelRatioF() : qreal(1));
    Append(key, generation);
    Append(key, array);
    const fxDataPointArray header = *array;
    Append(key, header.points);
    Append(key, header.pointCount);
    Append(key, header.pointSize);
    Append(key, header.precision);
    Append(key, header.typeShow);
    // The records from the first visible one to the last that can be drawn. Those left of
    // the view (Kagi starts its pen from them) change only with a new generation.
    const int records = pf::PointData::RecordCount(array);
    const long long end = std::min<long long>(records, std::max(0LL, (long long)e.GetLastDrawable() + 1));
    const long long first = std::max(0, e.GetFirstColumn());
    if (first < end)
        key.append(reinterpret_cast<const char*>(header.points) + first * (long long)sizeof(fxChartTypeRecord),
                   int((end - first) * (long long)sizeof(fxChartTypeRecord)));
    return key;
}

void FigurePicture::Draw(QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
                         bool selected, unsigned generation) {
    const QTransform& t = painter.transform();
    const bool wholePixels = t.type() <= QTransform::TxTranslate && t.dx() == std::floor(t.dx()) &&
                             t.dy() == std::floor(t.dy());
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatioF() : qreal(1);
    if (!g_enabled || selected || !wholePixels || ratio != qreal(1) || rect.isEmpty() || !array ||
        !renderer.GetEngine() || painter.compositionMode() != QPainter::CompositionMode_SourceOver ||
        painter.opacity() != qreal(1) || painter.brushOrigin() != QPointF() ||
        painter.testRenderHint(QPainter::Antialiasing)) {
        Clear();
        painter.save();
        painter.setClipRect(rect);
        renderer.Draw(painter, array);
        painter.restore();
        return;
    }
    const QByteArray key = Key(painter, rect, renderer, array, generation);
    if (key != key_ || image_.isNull()) {
        image_ = QImage(rect.size(), QImage::Format_ARGB32_Premultiplied);
        image_.fill(Qt::transparent);
        QPainter picture(&image_);
        // The renderer starts from the painter's state as it would on the window.
        picture.setRenderHints(painter.renderHints());
        picture.setPen(painter.pen());
        picture.setBrush(painter.brush());
        picture.setFont(painter.font());
        picture.setBackground(painter.background());
        picture.setBackgroundMode(painter.backgroundMode());
        picture.translate(-rect.topLeft());
        renderer.Draw(picture, array);
        picture.end();
        state_ = renderer.GetDrawState();
        key_ = key;
    } else {
        renderer.SetDrawState(state_);
    }
    painter.drawImage(rect.topLeft(), image_);
}

}  // namespace gx
