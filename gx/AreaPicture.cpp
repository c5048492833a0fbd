#include "gx/AreaPicture.h"

#include <QPainter>
#include <cstring>

#include "gui/CSkin.h"
#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Caption.h"
#include "gx/Chart.h"
#include "gx/FigurePicture.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/PictureCache.h"

namespace gx {

AreaPicture* AreaPicture::collecting_ = nullptr;

// A line's studies may paint up to kOverlayMargin pixels around its area: into the price
// scales and the time scale, drawn before the areas, into the caption strip of the area
// below, whose figures come after them, and into the bottom rows of the area above, whose
// figures came before them. None of those is a row this picture holds.
static_assert(FigurePicture::kOverlayMargin < Caption::defaultHeight, "a study's margin below its area stays within the caption strip of the area below");

bool AreaPicture::Composable(const QPainter& painter, const Area& area) {
    if (area.Rect().isEmpty() || !FigurePicture::Enabled() || !PictureCache::Usable(painter)) return false;
    const PFChartWidget* widget = area.GetChart() ? area.GetChart()->GetWidget() : nullptr;
    const CSkin* skin = widget ? widget->GetSkin() : nullptr;
    if (skin && !skin->GetBackImage().isNull()) return false;  // drawn over the grid, faintly
    for (const boost::shared_ptr<Layer>& layer : area.GetLayers()) {
        if (layer->HasFrame()) return false;  // drawn between the layers' figures
        for (const boost::shared_ptr<Indicator>& indicator : layer->GetIndicators())
            for (const boost::shared_ptr<Line>& line : indicator->GetLines())
                // Drawn afresh, directly: a selected line, studies being placed or moved.
                if (line->IsSelected() || !line->KeepsStudies()) return false;
    }
    return true;
}

void AreaPicture::Begin(const Grid::Rows& grid, const QRect& data, int bodyTop) {
    grid_ = grid;
    data_ = data;
    bodyTop_ = bodyTop;
    offered_.clear();
    collecting_ = this;
}

bool AreaPicture::Offer(const QImage& picture, const QPoint& at) {
    if (!collecting_) return false;
    collecting_->offered_.push_back(Offered{&picture, at});
    return true;
}

void AreaPicture::End(QPainter& painter) {
    if (collecting_ == this) collecting_ = nullptr;
    if (grid_.version == 0) return;
    const QRect body(QPoint(data_.left(), bodyTop_), data_.bottomRight());
    if (body.isEmpty()) {
        // The grid painted every row.
        for (const Offered& o : offered_) painter.drawImage(o.at, *o.picture);
    } else {
        QByteArray key;
        PictureCache::Append(key, grid_.version);
        PictureCache::Append(key, data_);
        PictureCache::Append(key, bodyTop_);
        for (const Offered& o : offered_) {
            PictureCache::Append(key, o.picture->cacheKey());
            PictureCache::Append(key, o.at);
        }
        if (key != key_ || image_.size() != body.size()) {
            if (image_.size() != body.size()) image_ = QImage(body.size(), QImage::Format_RGB32);
            grid_.Paint(image_, bodyTop_);
            QPainter picture(&image_);
            picture.translate(-body.topLeft());
            for (const Offered& o : offered_) picture.drawImage(o.at, *o.picture);
            picture.end();
            key_ = key;
        }
        painter.drawImage(body.topLeft(), image_);
        // Every picture's part outside those rows, as the line would blit it: the caption's
        // rows, and the studies' margins around the area.
        for (const Offered& o : offered_) {
            const QRect whole(o.at, o.picture->size());
            const QRect above(whole.topLeft(), QPoint(whole.right(), std::min(whole.bottom(), body.top() - 1)));
            const QRect below(QPoint(whole.left(), std::max(whole.top(), body.bottom() + 1)), whole.bottomRight());
            const int top = std::max(whole.top(), body.top()), bottom = std::min(whole.bottom(), body.bottom());
            const QRect left(QPoint(whole.left(), top), QPoint(std::min(whole.right(), body.left() - 1), bottom));
            const QRect right(QPoint(std::max(whole.left(), body.right() + 1), top), QPoint(whole.right(), bottom));
            for (const QRect& part : {above, below, left, right})
                if (part.isValid()) painter.drawImage(part.topLeft(), *o.picture, part.translated(-o.at));
        }
    }
    grid_ = Grid::Rows();
    offered_.clear();
}

}  // namespace gx
