#include "gx/FigurePicture.h"

#include <QPaintDevice>
#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "abi/records/dpa_records.h"
#include "data/ScaleEngine.h"
#include "gx/AreaPicture.h"
#include "gx/PictureCache.h"

namespace gx {

namespace {

bool g_enabled = true;

}  // namespace

void FigurePicture::SetEnabled(bool enabled) { g_enabled = enabled; }

bool FigurePicture::Enabled() { return g_enabled; }

void FigurePicture::Clear() {
    image_ = QImage();
    kept_ = Snapshot();
}

FigurePicture::Snapshot FigurePicture::Describe(const QPainter& painter, const QRect& rect,
                                                const pf::PointData& renderer, const fxDataPointArray* array,
                                                unsigned generation) const {
    Snapshot now;
    QByteArray& key = now.view;
    const pf::ScaleEngine& e = *renderer.GetEngine();
    PictureCache::Append(key, rect);
    PictureCache::AppendColumns(key, e);
    PictureCache::Append(key, e.GetTop());
    PictureCache::Append(key, e.GetBottom());
    PictureCache::Append(key, e.GetMinPrice());
    PictureCache::Append(key, e.GetMaxPrice());
    PictureCache::Append(key, e.GetYFactor());
    PictureCache::Append(key, e.GetFlag());
    PictureCache::AppendPainter(key, painter);
    const fxDataPointArray header = *array;
    PictureCache::Append(key, header.pointSize);
    PictureCache::Append(key, header.precision);
    PictureCache::Append(key, header.typeShow);
    now.generation = generation;
    now.array = array;
    now.points = header.points;
    // The records drawn, as the renderers' column walk bounds them. Those left of the view
    // (Kagi starts its pen from them) change only with a new generation.
    const long long records = pf::PointData::RecordCount(array);
    const long long first = e.GetFirstColumn();
    const long long last = e.GetLastDrawable();
    const long long n = e.GetColumnCount();
    now.first = int(std::max(0LL, std::min(first, records)));
    now.end = now.first;
    if (n > 0 && first >= 0 && first <= last && first < records) {
        now.end = int(std::min({first + n, last + 1, records}));
        now.records = QByteArray(reinterpret_cast<const char*>(header.points) + first * (long long)sizeof(fxChartTypeRecord),
                                 int((now.end - first) * (long long)sizeof(fxChartTypeRecord)));
    }
    return now;
}

bool FigurePicture::Same(const Snapshot& now) const {
    return !image_.isNull() && now.view == kept_.view && now.first == kept_.first && now.end == kept_.end &&
           now.generation == kept_.generation && now.array == kept_.array && now.points == kept_.points &&
           now.overlay == kept_.overlay && now.records == kept_.records;
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

void FigurePicture::Redraw(const QPainter& painter, const QRect& rect, pf::PointData& renderer,
                           fxDataPointArray* array, const Snapshot& now, int x0, int x1) {
    x0 = std::max(x0, rect.left());
    x1 = std::min(x1, rect.right());
    if (x0 > x1) return;
    // The records that can paint a pixel of x0 .. x1, found by the renderers' own walk of x.
    const pf::ScaleEngine& e = *renderer.GetEngine();
    const float step = e.GetXStep(float(e.GetColumnCount()));
    const int width = int(std::ceil(step));
    float x = float(e.GetLeft());
    int from = now.end, to = now.first;
    int left = x0, right = x1;
    for (int i = now.first; i < now.end; ++i, x += step) {
        const int px = pf::TruncToPixel(x + 0.5L);
        const int reachLeft = px - pf::PointData::kReachLeft;
        const int reachRight = px + width + pf::PointData::kReachRight;
        if (reachRight < x0) continue;
        if (reachLeft > x1) break;
        from = std::min(from, i);
        to = i + 1;
        left = std::min(left, reachLeft);
        right = std::max(right, reachRight);
    }
    // They are drawn whole into a strip of their own, cut only where the picture is, and
    // the strip's columns x0 .. x1 replace the picture's: every figure that paints there is
    // in the strip, each painted over those before it exactly as in a whole picture.
    left = std::max(left, rect.left());
    right = std::min(right, rect.right());
    QImage strip(right - left + 1, rect.height(), QImage::Format_ARGB32_Premultiplied);
    strip.fill(Qt::transparent);
    if (from < to) {
        PictureCache::MatchResolution(strip, painter);
        QPainter p(&strip);
        PictureCache::CopyState(p, painter);
        p.translate(-left, -rect.top());
        renderer.DrawRecords(p, array, from, to);
    }
    const std::size_t bytes = std::size_t(x1 - x0 + 1) * sizeof(QRgb);
    for (int y = 0; y < rect.height(); ++y)
        std::memcpy(image_.scanLine(y) + std::size_t(x0 - area_.left()) * sizeof(QRgb),
                    strip.constScanLine(y) + std::size_t(x0 - left) * sizeof(QRgb), bytes);
}

bool FigurePicture::Update(const QPainter& painter, const QRect& rect, pf::PointData& renderer,
                           fxDataPointArray* array, const Snapshot& now) {
    if (image_.isNull() || area_ != rect || !kept_.overlay.isEmpty() || now.view != kept_.view ||
        now.first < kept_.first || image_.format() != QImage::Format_ARGB32_Premultiplied)
        return false;
    const pf::ScaleEngine& e = *renderer.GetEngine();
    const float step = e.GetXStep(float(e.GetColumnCount()));
    // A view moved on by whole columns of whole pixels scrolls the picture; any other
    // column width puts the columns on new pixels.
    const long long shift = (long long)(now.first - kept_.first) * (long long)step;
    if (now.first != kept_.first && (!(step >= 1.0f) || step != std::floor(step) || shift >= rect.width() / 2))
        return false;
    // The first record that differs from what the picture shows; those before it, from the
    // picture's first on, are as they were, and so is what the first took over.
    const int records = pf::PointData::RecordCount(array);
    const int common = std::min(kept_.end, records);
    int changed = std::min(kept_.end, now.end);
    const char* points = reinterpret_cast<const char*>(array->points);
    for (int i = kept_.first; i < common && i < changed; ++i) {
        const std::size_t at = std::size_t(i - kept_.first) * sizeof(fxChartTypeRecord);
        if (std::memcmp(kept_.records.constData() + at, points + std::size_t(i) * sizeof(fxChartTypeRecord),
                        sizeof(fxChartTypeRecord)) != 0)
            changed = i;
    }
    if (common < changed) changed = common;
    if (changed < now.first || renderer.EntryState(array, kept_.first) != kept_.entry) return false;

    const int reach = pf::PointData::kReachLeft + int(std::ceil(step)) + pf::PointData::kReachRight;
    const int d = int(shift);
    bool drawn = false;
    if (d > 0) {
        const std::size_t bytes = std::size_t(image_.width() - d) * sizeof(QRgb);
        for (int y = 0; y < image_.height(); ++y) {
            uchar* row = image_.scanLine(y);
            std::memmove(row, row + std::size_t(d) * sizeof(QRgb), bytes);
        }
        // At the left the records that left the view and the edge's cut; at the right the
        // edge's old cut and what comes into view.
        Redraw(painter, rect, renderer, array, now, rect.left(), rect.left() + reach);
        Redraw(painter, rect, renderer, array, now, rect.right() - d - reach, rect.right());
        drawn = true;
    }
    if (changed < std::max(kept_.end, now.end)) {
        float x = float(e.GetLeft());
        for (int i = now.first; i < changed; ++i) x += step;
        Redraw(painter, rect, renderer, array, now, pf::TruncToPixel(x + 0.5L) - pf::PointData::kReachLeft,
               rect.right());
        drawn = true;
    }
    if (drawn) state_ = renderer.GetDrawState();
    return true;
}

void FigurePicture::Draw(QPainter& painter, const QRect& rect, pf::PointData& renderer, fxDataPointArray* array,
                         bool selected, unsigned generation) {
    if (!Usable(painter, rect, renderer, array, selected)) {
        DrawDirectly(painter, rect, renderer, array);
        return;
    }
    Snapshot now = Describe(painter, rect, renderer, array, generation);
    if (!Same(now)) {
        if (!Update(painter, rect, renderer, array, now)) Render(painter, rect, rect, renderer, array, nullptr);
        kept_ = std::move(now);
        kept_.entry = renderer.EntryState(array, kept_.first);
    }
    renderer.SetDrawState(state_);
    if (!AreaPicture::Offer(image_, area_.topLeft())) painter.drawImage(area_.topLeft(), image_);
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
    Snapshot now = Describe(painter, rect, renderer, array, generation);
    now.overlay = 'S' + overlayKey;
    if (!Same(now)) {
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
        kept_ = std::move(now);
    }
    renderer.SetDrawState(state_);
    if (!AreaPicture::Offer(image_, area_.topLeft())) painter.drawImage(area_.topLeft(), image_);
}

}  // namespace gx
