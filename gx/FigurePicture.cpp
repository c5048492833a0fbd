#include "gx/FigurePicture.h"

#include <QPaintDevice>
#include <QPainter>
#include <QTransform>
#include <algorithm>

#include "abi/records/dpa_records.h"
#include "data/ScaleEngine.h"
#include "gx/PictureCache.h"

namespace gx {

namespace {

bool g_enabled = true;

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
    PictureCache::Append(key, rect);
    PictureCache::Append(key, e.GetLeft());
    PictureCache::Append(key, e.GetTop());
    PictureCache::Append(key, e.GetRight());
    PictureCache::Append(key, e.GetBottom());
    PictureCache::Append(key, e.GetX0());
    PictureCache::Append(key, e.GetX1());
    PictureCache::Append(key, e.GetMinPrice());
    PictureCache::Append(key, e.GetMaxPrice());
    PictureCache::Append(key, e.GetXFactor());
    PictureCache::Append(key, e.GetYFactor());
    PictureCache::Append(key, e.GetColumnCount());
    PictureCache::Append(key, e.GetFirstColumn());
    PictureCache::Append(key, e.GetFlag());
    PictureCache::AppendPainter(key, painter);
    PictureCache::Append(key, generation);
    PictureCache::Append(key, array);
    const fxDataPointArray header = *array;
    PictureCache::Append(key, header.points);
    PictureCache::Append(key, header.pointCount);
    PictureCache::Append(key, header.pointSize);
    PictureCache::Append(key, header.precision);
    PictureCache::Append(key, header.typeShow);
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

bool FigurePicture::Usable(const QPainter& painter, const QRect& rect, const pf::PointData& renderer,
                           const fxDataPointArray* array, bool selected) const {
    return g_enabled && !selected && !rect.isEmpty() && array && renderer.GetEngine() && PictureCache::Usable(painter);
}

void FigurePicture::DrawDirectly(QPainter& painter, const QRect& rect, pf::PointData& renderer,
                                 fxDataPointArray* array) {
    Clear();
    painter.save();
    painter.setClipRect(rect);
    renderer.Draw(painter, array);
    painter.restore();
}

void FigurePicture::Render(const QPainter& painter, const QRect& rect, const QRect& area, pf::PointData& renderer,
                           fxDataPointArray* array, const std::function<void(QPainter&)>* overlay) {
    image_ = QImage(area.size(), QImage::Format_ARGB32_Premultiplied);
    image_.fill(Qt::transparent);
    PictureCache::MatchResolution(image_, painter);
    QPainter picture(&image_);
    PictureCache::CopyState(picture, painter);
    picture.translate(-area.topLeft());
    if (area == rect) {
        renderer.Draw(picture, array);
    } else {
        picture.save();
        picture.setClipRect(rect);
        renderer.Draw(picture, array);
        picture.restore();
    }
    if (overlay) (*overlay)(picture);
    picture.end();
    state_ = renderer.GetDrawState();
    area_ = area;
}

void FigurePicture::Draw(QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
                         bool selected, unsigned generation) {
    if (!Usable(painter, rect, renderer, array, selected)) {
        DrawDirectly(painter, rect, renderer, array);
        return;
    }
    const QByteArray key = Key(painter, rect, renderer, array, generation);
    if (key != key_ || image_.isNull()) {
        Render(painter, rect, rect, renderer, array, nullptr);
        key_ = key;
    } else {
        renderer.SetDrawState(state_);
    }
    painter.drawImage(area_.topLeft(), image_);
}

void FigurePicture::DrawOverlay(QPainter& painter, const QRect& rect, const std::function<void(QPainter&)>& overlay) {
    painter.save();
    painter.setClipRect(OverlayRect(rect), painter.hasClipping() ? Qt::IntersectClip : Qt::ReplaceClip);
    overlay(painter);
    painter.restore();
}

void FigurePicture::Draw(QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
                         bool selected, unsigned generation, const QByteArray& overlayKey,
                         const std::function<void(QPainter&)>& overlay) {
    // The overlay is clipped alike whether it is drawn directly or kept in the picture.
    const auto drawOverlay = [&overlay, &rect](QPainter& p) { DrawOverlay(p, rect, overlay); };
    if (!Usable(painter, rect, renderer, array, selected)) {
        DrawDirectly(painter, rect, renderer, array);
        drawOverlay(painter);
        return;
    }
    QByteArray key = Key(painter, rect, renderer, array, generation);
    key.append('S');
    key.append(overlayKey);
    if (key != key_ || image_.isNull()) {
        // The margin reaches only as far as the painter can paint.
        const QTransform& t = painter.transform();
        const QPaintDevice* device = painter.device();
        QRect area = OverlayRect(rect);
        if (device) {
            const QRect reach = QRect(0, 0, device->width(), device->height()).translated(-int(t.dx()), -int(t.dy()));
            area = area.intersected(reach.united(rect));
        }
        const std::function<void(QPainter&)> clipped = drawOverlay;
        Render(painter, rect, area, renderer, array, &clipped);
        key_ = key;
    } else {
        renderer.SetDrawState(state_);
    }
    painter.drawImage(area_.topLeft(), image_);
}

}  // namespace gx
