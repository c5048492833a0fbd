// The mouse on a line study: placing its points, dragging one point or the whole study,
// and the polyline's double clicks (finish early, delete a point, insert a point).
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gx/Chart.h"
#include "gx/Line.h"
#include "gx/TimeScale.h"
#include "gx/ls/LineStudy.h"
#include "gx/ls/LsFactory.h"

namespace gx {

int LineStudy::MouseColumn(const QPoint& p) const {
    if (!engine_) return 0;
    const long long column =
        static_cast<long long>(engine_->GetFirstColumn()) + engine_->UnTranslateX(p.x() - engine_->GetLeft()) - 1;
    return static_cast<int>(std::max<long long>(-pf::kPixelLimit, std::min<long long>(pf::kPixelLimit, column)));
}

double LineStudy::MousePrice(const QPoint& p) const {
    if (!engine_) return 0.0;
    const double price = engine_->UnTranslateY(p.y());
    return std::isfinite(price) ? price : 0.0;
}

void LineStudy::SetPointAt(lsPointShape& point, const QPoint& p) const {
    int column = MouseColumn(p);
    if (column < 0) column = 0;
    const long time = line_ ? line_->GetIndexVirtualTime(column) : 0;
    point.m_xTime = static_cast<std::int32_t>(time < 0 ? 0 : time);
    point.value = static_cast<float>(MousePrice(p));
    RecomputePositionByIndex(point, column);
}

// ---- press ----

void LineStudy::mousePressEvent(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    if (state_ & StateCreating) {
        Object::Select(true);
        SetFocus();
        if (placed_ >= static_cast<int>(in_.size())) return;
        // The point stays where the rubber band put it. Only the study's first point, born
        // with this press before any move could place it, takes the press position.
        lsPointShape& point = in_[std::size_t(placed_)];
        if (!rubberBand_) SetPointAt(point, event.pos());
        rubberBand_ = false;
        point.m_typePoint = LS_POINT_PLACED;
        ++placed_;
        if (placed_ >= static_cast<int>(in_.size())) {
            if (IsPolyLine()) in_[std::size_t(placed_ - 1)].m_typePoint = LS_POINT_LAST;
            FinishCreating(true);
            state_ = StateCreated;
        } else {
            state_ |= StateNewPoint;
        }
        if (cps_.error == 1) LeaveAfterHostError();
        return;
    }
    ReleaseTempDraw();
    const bool wasSelected = selected_;
    const bool hit = PtInLS(event.pos()) || [&] {
        int index = -1;
        return IsSelected() && PtInCP(event.pos(), index);
    }();
    // Without Shift the press decides the selection, when the line lets it (a press on one
    // of several selected studies keeps them all); with Shift a hit adds to the selection
    // and a miss keeps it.
    if (!(event.modifiers() & Qt::ShiftModifier)) {
        if (!line_ || line_->GetGroupSelect()) Object::Select(hit);
    } else if (hit) {
        Object::Select(true);
    }
    if (!hit) {
        state_ = StateCreated;
        if (wasSelected != selected_) SetFocus();
        return;
    }
    state_ = StateMoving;
    if (line_) line_->IsOnDataClicked(event.pos());
    dragIndex_ = -1;
    for (int i = 0; i < OutPointsUsed(); ++i) {
        const QPoint at = MarkerPos(i);
        if (std::abs(event.pos().x() - at.x()) <= 2 && std::abs(event.pos().y() - at.y()) <= 2) dragIndex_ = i;
    }
    // No drag position yet: the first move only takes its place, later moves move.
    dragX_ = 0;
    dragY_ = 0;
    snapshot_.reset(new lsControlPointsShapesWrap(cps_, sizes_));
    if (wasSelected != selected_) SetFocus();
}

// ---- move ----

bool LineStudy::CheckMoveOut(int from, int to) const {
    const int difference = to - from;
    const int used = InPointsUsed();
    for (int i = 0; i < used; ++i) {
        const lsPointShape& p = in_[std::size_t(i)];
        if (p.m_typePoint == LS_POINT_NOT_PLACED) continue;
        if (GetNormalizeIndex(p) + difference < 0) return true;
    }
    return false;
}

void LineStudy::MoveLineStudyCPHorizontal(int index, int from, int to) {
    if (index < 0 || index >= static_cast<int>(in_.size())) return;
    lsPointShape& p = in_[std::size_t(index)];
    // Not held at candle 0: one point may be dragged left of the data (a whole study may not,
    // CheckMoveOut).
    const int position = GetNormalizeIndex(p) + (to - from);
    const long time = line_ ? line_->GetIndexVirtualTime(position) : 0;
    p.m_xTime = static_cast<std::int32_t>(time < 0 ? 0 : time);
    RecomputePositionByIndex(p, position);
}

void LineStudy::MoveLineStudyCPVertical(int index, double price) {
    if (index < 0 || index >= static_cast<int>(in_.size())) return;
    in_[std::size_t(index)].value = static_cast<float>(price);
}

void LineStudy::MoveLineStudyHorizontal(int from, int to) {
    const int used = InPointsUsed();
    for (int i = 0; i < used; ++i)
        if (in_[std::size_t(i)].m_typePoint != LS_POINT_NOT_PLACED) MoveLineStudyCPHorizontal(i, from, to);
}

void LineStudy::MoveLineStudyVertical(double priceNow, double priceBefore) {
    const int used = InPointsUsed();
    for (int i = 0; i < used; ++i) {
        lsPointShape& p = in_[std::size_t(i)];
        if (p.m_typePoint != LS_POINT_NOT_PLACED) p.value = static_cast<float>(p.value + (priceNow - priceBefore));
    }
}

void LineStudy::MoveLineStudyWrap(int to, int from, double priceNow, double priceBefore) {
    if (to != from) MoveLineStudyHorizontal(from, to);
    MoveLineStudyVertical(priceNow, priceBefore);
}

void LineStudy::mouseMoveEvent(const QMouseEvent& event) {
    if (state_ & StateCreating) {
        if (in_.empty() || placed_ >= static_cast<int>(in_.size())) return;
        const int column = MouseColumn(event.pos());
        const long time = line_ ? line_->GetIndexVirtualTime(column) : -1;
        if (time < 0) return;
        lsPointShape& point = in_[std::size_t(placed_)];
        point.m_xTime = static_cast<std::int32_t>(time);
        point.value = static_cast<float>(MousePrice(event.pos()));
        RecomputePositionByIndex(point, column);
        rubberBand_ = true;
        GetListControlPointer();
        return;
    }
    if (!(state_ & StateMoving)) return;
    cps_.error = 0;
    const QPoint now = event.pos();
    if (dragX_ == 0 && dragY_ == 0) {
        dragX_ = now.x();
        dragY_ = now.y();
        return;
    }
    const QPoint before(dragX_, dragY_);
    const int fromColumn = MouseColumn(before);
    const int toColumn = MouseColumn(now);
    const double priceBefore = MousePrice(before);
    const double priceNow = MousePrice(now);
    if (dragIndex_ != -1) {
        // A previous position at column 0, time 0 and price 0 is no position at all.
        const long timeBefore = line_ ? line_->GetIndexVirtualTime(fromColumn) : 0;
        if (fromColumn != 0 || timeBefore != 0 || priceBefore != 0.0) {
            MoveLineStudyCPHorizontal(dragIndex_, fromColumn, toColumn);
            MoveLineStudyCPVertical(dragIndex_, priceNow);
        }
    } else {
        // A move that would put a point left of candle 0 is refused as a whole.
        if (CheckMoveOut(fromColumn, toColumn)) return;
        MoveLineStudyWrap(toColumn, fromColumn, priceNow, priceBefore);
    }
    dragX_ = now.x();
    dragY_ = now.y();
    GetListControlPointer();
}

// ---- release ----

bool LineStudy::PointsEqual(const std::vector<lsPointShape>& a, const std::vector<lsPointShape>& b) const {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].m_typePoint != b[i].m_typePoint || a[i].m_xTime != b[i].m_xTime || a[i].index != b[i].index)
            return false;
        if (std::fabs(std::fabs(double(a[i].value)) - std::fabs(double(b[i].value))) > 1e-5) return false;
        if (a[i].m_typePoint == LS_POINT_LAST) break;
    }
    return true;
}

void LineStudy::mouseReleaseEvent(const QMouseEvent&) {
    // Every button's release ends a drag or a placement step.
    dragX_ = 0;
    dragY_ = 0;
    dragIndex_ = -1;
    const int previous = state_;
    if (state_ & StateNewPoint) {
        state_ &= ~StateNewPoint;
        return;
    }
    if ((state_ & StateCreating) && placed_ < static_cast<int>(in_.size())) {
        // A release that follows no placing press places the point (a drag from a press
        // the study did not see).
        lsPointShape& point = in_[std::size_t(placed_)];
        point.m_typePoint = LS_POINT_PLACED;
        rubberBand_ = false;
        ++placed_;
        if (placed_ >= static_cast<int>(in_.size())) {
            if (IsPolyLine()) in_[std::size_t(placed_ - 1)].m_typePoint = LS_POINT_LAST;
            FinishCreating(true);
            state_ = StateCreated;
        }
        return;
    }
    // A study with no point to place (the host gave it none) is done as well.
    state_ = StateCreated;
    if ((previous & StateMoving) && snapshot_) {
        if (!PointsEqual(snapshot_->In(), in_))
            if (PFChartWidget* widget = GetWidget()) widget->RecordLineStudyMove(this);
        snapshot_.reset();
    }
    ReleaseTempDraw();
}

// ---- double click ----

void LineStudy::mouseDoubleClickEvent(const QMouseEvent& event) {
    if (!IsPolyLine() || event.button() != Qt::LeftButton) return;
    if (state_ == StateCreating) {
        // Ends the polyline at the point under the mouse.
        if (placed_ < 1 || in_.empty()) return;
        --placed_;
        lsPointShape& point = in_[std::size_t(std::min<int>(placed_, int(in_.size()) - 1))];
        SetPointAt(point, event.pos());
        point.m_typePoint = LS_POINT_LAST;
        ++placed_;
        FinishCreating(true);
        state_ = StateCreated;
        return;
    }
    PolyLineDoubleClick(event);
}

void LineStudy::PolyLineDoubleClick(const QMouseEvent& event) {
    const bool hit = PtInLS(event.pos());
    int marker = -1;
    const bool onMarker = PtInCP(event.pos(), marker);
    if (hit || onMarker) Object::Select(true);
    else if (!(event.modifiers() & Qt::ShiftModifier)) Object::Select(false);
    const int used = OutPointsUsed();
    const int count = static_cast<int>(in_.size());
    // `used` counts the terminator: more than one point before it leaves a line after a delete.
    if (onMarker && used - 1 > 1) {
        if (marker == 9) {
            if (count > 8) in_[8].m_typePoint = LS_POINT_LAST;
        } else {
            // The points after the deleted one move down; the new last one ends the list.
            const int last = std::min(InPointsUsed(), count) - 1;
            for (int i = marker; i < last; ++i) in_[std::size_t(i)] = in_[std::size_t(i + 1)];
            if (last >= 1) in_[std::size_t(last - 1)].m_typePoint = LS_POINT_LAST;
            if (last >= 0 && last < count) std::memset(&in_[std::size_t(last)], 0, sizeof(lsPointShape));
            placed_ = std::max(0, std::min(placed_, last));
        }
    } else if (!onMarker && used <= 8) {
        // A double click inserts a point after the segment under it, or after the first
        // point when no segment is hit (a polyline holds ten at most).
        int segment = 0;
        for (int i = 0; i < ShapesUsed(); ++i) {
            try {
                if (LsFactory::Instance().Create(shapes_[std::size_t(i)].type, engine_, rect_, cps_, i, this)->PtInLS(event.pos())) {
                    segment = i;
                    break;
                }
            } catch (const std::exception&) {
            }
        }
        if (segment + 1 >= count) return;
        for (int i = count - 2; i >= segment + 1; --i) in_[std::size_t(i + 1)] = in_[std::size_t(i)];
        lsPointShape& point = in_[std::size_t(segment + 1)];
        SetPointAt(point, event.pos());
        point.m_typePoint = LS_POINT_PLACED;
        placed_ = std::min(count, placed_ + 1);
    } else {
        return;
    }
    // The host recomputes the shapes. A failing host has deleted the study, and the error
    // thrown ends at the chart window's barrier, which takes the study off its line.
    UpdateShapeCount(static_cast<int>(shapes_.size()));
}

void LineStudy::LeaveAfterHostError() {
    // The study has left the host (Delete) and now leaves its line, so that nothing of it is
    // drawn or saved and the drawing tool can start a new one. The caller's copy of the
    // line's list keeps this object alive until its handler returns.
    Delete();
    state_ = StateCreated;
    if (Line* line = line_) line->DeleteLineStudy(this);
}

}  // namespace gx
