#include "gx/PictureCache.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QRegion>
#include <algorithm>
#include <QPainter>
#include <QTransform>
#include <cmath>

#include "data/ScaleEngine.h"

namespace gx {

namespace {

// Dots per metre that an image reports back as `dpi` dots per inch.
int DotsPerMetre(int dpi) { return qRound(dpi / 0.0254); }

}  // namespace

bool PictureCache::Usable(const QPainter& painter) {
    const QPaintDevice* device = painter.device();
    // A raster device only: a printer or a picture recorder gets the drawing itself.
    if (!device || !painter.isActive() || !painter.paintEngine() ||
        painter.paintEngine()->type() != QPaintEngine::Raster)
        return false;
    const QTransform t = painter.deviceTransform();
    const bool wholePixels =
        t.type() <= QTransform::TxTranslate && t.dx() == std::floor(t.dx()) && t.dy() == std::floor(t.dy());
    const int dpiX = device->logicalDpiX();
    const int dpiY = device->logicalDpiY();
    // An image keeps its resolution in whole dots per metre: dots per inch that do not come
    // back the same (absurd ones) would lay fonts out differently.
    const bool dpiKept = dpiX > 0 && dpiY > 0 && dpiX < 100000 && dpiY < 100000 &&
                         qRound(DotsPerMetre(dpiX) * 0.0254) == dpiX && qRound(DotsPerMetre(dpiY) * 0.0254) == dpiY;
    return wholePixels && dpiKept && device->devicePixelRatioF() == qreal(1) &&
           painter.compositionMode() == QPainter::CompositionMode_SourceOver && painter.opacity() == qreal(1) &&
           painter.brushOrigin() == QPointF() && !painter.testRenderHint(QPainter::Antialiasing);
}

bool PictureCache::Surround(const QPainter& painter, const QRect& rect, int margin, QMargins* around) {
    const QPaintEngine* engine = painter.paintEngine();
    const QPaintDevice* target = engine && engine->paintDevice() ? engine->paintDevice() : painter.device();
    if (!target) return false;
    const QTransform t = painter.deviceTransform();
    const QRect onDevice = rect.translated(int(t.dx()), int(t.dy()));
    const QRect bounds(0, 0, target->width(), target->height());
    if (!bounds.contains(onDevice)) return false;
    // A paint event's update region, or a grab's: only a single rectangle holding the column
    // leaves its clip the column itself.
    const QRegion system = engine ? engine->systemClip() : QRegion();
    if (!system.isEmpty() && (system.rectCount() != 1 || !system.boundingRect().contains(onDevice))) return false;
    margin = std::max(0, margin);
    *around = QMargins(std::min(margin, onDevice.left() - bounds.left()), std::min(margin, onDevice.top() - bounds.top()),
                       std::min(margin, bounds.right() - onDevice.right()),
                       std::min(margin, bounds.bottom() - onDevice.bottom()));
    return true;
}

void PictureCache::AppendColumns(QByteArray& key, const pf::ScaleEngine& engine) {
    Append(key, engine.GetLeft());
    Append(key, engine.GetRight());
    Append(key, engine.GetX0());
    Append(key, engine.GetXFactor());
    Append(key, engine.GetColumnCount());
}

void PictureCache::AppendPainter(QByteArray& key, const QPainter& painter) {
    const QPaintDevice* device = painter.device();
    Append(key, int(painter.renderHints()));
    Append(key, device ? device->devicePixelRatioF() : qreal(1));
    Append(key, device ? device->logicalDpiX() : 0);
    Append(key, device ? device->logicalDpiY() : 0);
}

void PictureCache::CopyState(QPainter& picture, const QPainter& painter) {
    picture.setRenderHints(painter.renderHints());
    picture.setPen(painter.pen());
    picture.setBrush(painter.brush());
    picture.setFont(painter.font());
    picture.setBackground(painter.background());
    picture.setBackgroundMode(painter.backgroundMode());
    picture.setLayoutDirection(painter.layoutDirection());
}

void PictureCache::MatchResolution(QImage& image, const QPainter& painter) {
    if (const QPaintDevice* device = painter.device()) {
        image.setDotsPerMeterX(DotsPerMetre(device->logicalDpiX()));
        image.setDotsPerMeterY(DotsPerMetre(device->logicalDpiY()));
    }
}

const QImage* PictureCache::Find(const QByteArray& key) {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].key != key) continue;
        if (i > 0) {
            Entry hit = std::move(entries_[i]);
            entries_.erase(entries_.begin() + long(i));
            entries_.insert(entries_.begin(), std::move(hit));
        }
        return &entries_.front().image;
    }
    return nullptr;
}

QImage& PictureCache::Make(const QByteArray& key, const QSize& size, const QPainter& painter) {
    for (std::size_t i = 0; i < entries_.size(); ++i)
        if (entries_[i].key == key) {
            entries_.erase(entries_.begin() + long(i));
            break;
        }
    if (int(entries_.size()) >= maxEntries_) entries_.resize(std::size_t(maxEntries_ - 1));
    Entry entry{key, QImage(size, QImage::Format_RGB32)};
    MatchResolution(entry.image, painter);
    entries_.insert(entries_.begin(), std::move(entry));
    return entries_.front().image;
}

bool PictureCache::DrawKept(QPainter& painter, const QRect& rect, int margin, QByteArray key, const QColor& fill,
                            const std::function<void(QPainter&)>& draw) {
    QMargins around;
    if (rect.isEmpty() || fill.alpha() != 255 || !Usable(painter) || !Surround(painter, rect, margin, &around))
        return false;
    AppendPainter(key, painter);
    Append(key, around);
    const QImage* image = Find(key);
    const QPoint origin(around.left(), around.top());
    if (!image) {
        QImage& made = Make(key, rect.size().grownBy(around), painter);
        made.fill(fill);
        QPainter picture(&made);
        CopyState(picture, painter);
        picture.translate(origin - rect.topLeft());
        draw(picture);
        picture.end();
        image = &made;
    }
    painter.save();
    painter.setClipRect(rect);
    painter.drawImage(rect.topLeft(), *image, QRect(origin, rect.size()));
    painter.restore();
    return true;
}

}  // namespace gx
