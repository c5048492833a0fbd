#include "gx/ls/LsArch.h"

#include <QPainter>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "data/ScaleEngine.h"
#include "gx/ls/LineStudy.h"
#include "gx/ls/LsHLine.h"
#include "gx/ls/LsUtil.h"
#include "gx/ls/StraightLine.h"

namespace gx {

LsArch::LsArch(const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect, const lsControlPointsShapes& cps,
               int index, const LineStudy* study)
    : LsBaseImpl(engine, rect, cps, index, study), cps_(&cps) {}

int LsArch::GetCorrectedInCPIndex(int i) const {
    if (!cps_ || !cps_->in || i < 0 || i >= cps_->inCount) return 0;
    return study_ ? study_->GetNormalizeIndex(cps_->in[i]) : cps_->in[i].index;
}

QRect LsArch::CalcArcRect() const {
    const lsShapeArc* block = Block<lsShapeArc>();
    if (!block || !engine_ || !cps_ || !cps_->in || !cps_->out || cps_->inCount < 2 || cps_->outCount < 2)
        throw StraightLine<float>::Error();
    const float cx = float(util::LsBase::CalcX(engine_, GetCorrectedInCPIndex(1)));
    const float cy = float(engine_->TranslateY(cps_->out[1].value));
    const float px = float(util::LsBase::CalcX(engine_, GetCorrectedInCPIndex(0)));
    const float py = float(engine_->TranslateY(cps_->out[0].value));
    const float percent = block->percent;
    const float r = StraightLine<float>(px, py, cx, cy).Length() * percent / 100.0f;
    if (!std::isfinite(r) || std::fabs(r) > float(pf::kPixelLimit)) throw StraightLine<float>::Error();
    const int left = static_cast<int>(cx - r);
    const int top = static_cast<int>(cy - r);
    const int side = static_cast<int>(2 * r);
    return QRect(QPoint(left, top), QPoint(left + side - 1, top + side - 1));
}

void LsArch::Draw(QPainter& painter) {
    if (!IsVisible() || !Block<lsShapeArc>()) return;
    try {
        const QRect box = CalcArcRect();
        if (box.width() > 0) {
            const std::int32_t lower = Block<lsShapeArc>()->lowerHalf;
            const std::int32_t width = shape_->penWidth;
            const int h = static_cast<int>(width * 0.5 + 0.5) + 1;
            if (rect_.contains(box.adjusted(-h, -h, h, h))) {
                painter.drawArc(box, 0, lower == 0 ? 2880 : -2880);
            } else {
                painter.save();
                painter.setClipRect(rect_);
                painter.drawArc(box, 0, lower == 0 ? 2880 : -2880);
                painter.restore();
            }
        }
    } catch (const StraightLine<float>::Error&) {
        // No geometry: the arc is not drawn, its title still is.
    }
    int x = 0;
    const float price = Block<lsShapeArc>() && cps_ && cps_->out && cps_->outCount > 1 ? cps_->out[1].value : 0.0f;
    if (engine_ && LsHLine::TitleX(rect_, shape_->titlePosition, x)) DrawTitle(painter, x, engine_->TranslateY(price));
}

bool LsArch::PtInLS(const QPoint& point) const {
    const lsShapeArc* block = Block<lsShapeArc>();
    if (!IsVisible() || !block) return false;
    QRect box;
    try {
        box = CalcArcRect();
    } catch (const StraightLine<float>::Error&) {
        return false;
    }
    if (box.width() <= 0 || !box.contains(point)) return false;
    const int cy = box.top() + (box.bottom() - box.top() + 1) / 2;
    const std::int32_t lower = block->lowerHalf;
    if (point.y() > cy && lower != 1) return false;
    if (point.y() < cy && lower != 0) return false;
    const double dx = box.left() + box.width() / 2.0 - point.x();
    const double dy = double(cy) - point.y();
    const double d = std::sqrt(dx * dx + dy * dy);
    const int radius = static_cast<int>(box.width() * 0.5 + 0.5);
    return std::abs(radius - static_cast<int>(d + 0.5)) < 3;
}

}  // namespace gx
