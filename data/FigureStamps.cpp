#include "data/FigureStamps.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QRegion>
#include <QTransform>
#include <cmath>

#include "data/ScaleEngine.h"
#include "gx/PictureCache.h"

namespace pf {

bool FigureStamps::enabled_ = true;

namespace {

// Images whose pixels take an opaque pen's colour unchanged, blitted or drawn.
bool ExactFormat(QImage::Format format) {
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
           format == QImage::Format_ARGB32_Premultiplied;
}

}  // namespace

void FigureStamps::SetEnabled(bool enabled) { enabled_ = enabled; }

bool FigureStamps::Enabled() { return enabled_; }

void FigureStamps::Begin(const QPainter& painter) {
    havePrevious_ = false;
    penApplied_ = false;
    usable_ = false;
    pixels_ = nullptr;
    // Without a device to measure everything may show.
    visible_ = QRect(QPoint(-kPixelLimit, -kPixelLimit), QPoint(kPixelLimit, kPixelLimit));
    inside_ = QRect();
    const QPaintEngine* engine = painter.paintEngine();
    const QPaintDevice* target = engine && engine->paintDevice() ? engine->paintDevice() : painter.device();
    if (!painter.isActive() || !target) return;
    const QTransform t = painter.deviceTransform();
    const bool wholePixels = t.type() <= QTransform::TxTranslate && t.dx() == std::floor(t.dx()) &&
                             t.dy() == std::floor(t.dy()) && std::fabs(t.dx()) < kPixelLimit &&
                             std::fabs(t.dy()) < kPixelLimit;
    if (!wholePixels) return;
    // Switched off, every figure is drawn through the painter, as many times as asked.
    if (!enabled_) return;
    const QPoint shift(int(t.dx()), int(t.dy()));
    visible_ = QRect(QPoint(0, 0), QSize(target->width(), target->height())).translated(-shift);
    bool oneRect = true;
    if (engine) {
        // A paint event's update region, or a grab's, in device pixels.
        const QRegion system = engine->systemClip();
        if (!system.isEmpty()) {
            visible_ &= system.boundingRect().translated(-shift);
            oneRect = system.rectCount() == 1;
        }
    }
    if (painter.hasClipping()) {
        const QRegion clip = painter.clipRegion();
        visible_ &= clip.boundingRect();
        oneRect = oneRect && clip.rectCount() == 1;
    }
    if (oneRect) inside_ = visible_;
    usable_ = engine && engine->type() == QPaintEngine::Raster && target->devType() == QInternal::Image &&
              ExactFormat(static_cast<const QImage*>(target)->format()) && painter.brush().style() == Qt::NoBrush &&
              gx::PictureCache::Usable(painter);
    if (usable_) {
        // The raster engine paints straight into the image's pixels, the very bytes read
        // here (without detaching the image from the painter).
        const QImage* image = static_cast<const QImage*>(target);
        pixels_ = const_cast<uchar*>(image->constBits());
        bytesPerLine_ = image->bytesPerLine();
        origin_ = shift;
    }
}

void FigureStamps::UsePen(const QPen& pen) {
    penApplied_ = false;
    pen_ = pen;
    penKey_ = PenKey{pen.color().rgba(), int(pen.style()), pen.widthF(), int(pen.capStyle()), int(pen.joinStyle())};
    // Patterns of their own, and brushes other than a colour, draw through the painter.
    if (pen.style() == Qt::CustomDashLine || pen.brush().style() != Qt::SolidPattern || pen.isCosmetic())
        penKey_.style = -1;
}

const FigureStamps::Stamp* FigureStamps::Find(const Shape& shape, const QSize& size) {
    const auto matches = [&](const Stamp& s) { return s.shape == shape && s.size == size && s.pen == penKey_; };
    if (last_ < stamps_.size() && matches(stamps_[last_])) return &stamps_[last_];
    for (std::size_t i = 0; i < stamps_.size(); ++i)
        if (matches(stamps_[i])) {
            last_ = i;
            return &stamps_[i];
        }
    return nullptr;
}

FigureStamps::Stamp& FigureStamps::Make(const Shape& shape, const QSize& size) {
    // Full: the stamp made longest ago gives way (a view shows a few kinds of box at most).
    if (stamps_.size() >= std::size_t(kMaxStamps)) stamps_.erase(stamps_.begin());
    stamps_.push_back(Stamp{shape, size, penKey_, QImage(size, QImage::Format_ARGB32_Premultiplied), false, {}});
    last_ = stamps_.size() - 1;
    Stamp& stamp = stamps_.back();
    stamp.image.fill(Qt::transparent);
    return stamp;
}

void FigureStamps::Finish(Stamp& stamp) {
    stamp.solid = true;
    for (int y = 0; y < stamp.image.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(stamp.image.constScanLine(y));
        for (int x = 0; x < stamp.image.width(); ++x) {
            const int alpha = qAlpha(row[x]);
            if (alpha == 0) continue;
            if (alpha != 255) stamp.solid = false;
            stamp.dots.push_back(Dot{x, y, row[x]});
        }
    }
}

void FigureStamps::Blit(QPainter& painter, const Stamp& stamp, const QPoint& corner) {
    if (!pixels_ || !stamp.solid) {
        painter.drawImage(corner, stamp.image);
        return;
    }
    // Opaque pixels over anything are the pixels themselves: what a blit writes.
    uchar* base = pixels_ + qsizetype(corner.y() + origin_.y()) * bytesPerLine_ +
                  qsizetype(corner.x() + origin_.x()) * qsizetype(sizeof(QRgb));
    for (const Dot& d : stamp.dots)
        reinterpret_cast<QRgb*>(base + qsizetype(d.y) * bytesPerLine_)[d.x] = d.rgb;
}

}  // namespace pf
