// The chart window's input: mouse, wheel, keys, tool tips and the zoom selection.
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Line.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "gx/ls/LineStudy.h"

bool PFChartWidget::Forbidden(QEvent* event) const {
    if (cursor().shape() != Qt::ForbiddenCursor) return false;
    event->ignore();
    return true;
}

void PFChartWidget::SetCursor() {
    lsDrawingMode mode;
    if (busy_) setCursor(Qt::ForbiddenCursor);
    else if (GetCrossCursorState() == 1) setCursor(Qt::CrossCursor);
    else if (GetDrawingMode(mode)) setCursor(Qt::CrossCursor);  // a study tool is chosen
    else setCursor(Qt::ArrowCursor);
}

void PFChartWidget::ResetCursor() { setCursor(Qt::ArrowCursor); }

PFChartWidget::BusyScope::BusyScope(PFChartWidget* widget)
    : widget_(widget), was_(widget->busy_), cursor_(widget->cursor().shape()) {
    widget->busy_ = true;
    widget->setCursor(Qt::ForbiddenCursor);
}

PFChartWidget::BusyScope::~BusyScope() {
    if (!widget_) return;
    widget_->busy_ = was_;
    widget_->setCursor(cursor_);
}

boost::shared_ptr<gx::Area> PFChartWidget::AreaAt(const QPoint& point) const {
    return gx::WidgetWalker<gx::FindArea>(chart_.get(), gx::FindArea(point)).Walk().found;
}

boost::shared_ptr<gx::Line> PFChartWidget::LineUnderMouse(const QPoint& point) const {
    gx::FindUnderMouseObject found =
        gx::WidgetWalker<gx::FindUnderMouseObject>(chart_.get(), gx::FindUnderMouseObject(point)).Walk();
    return found.lines.empty() ? boost::shared_ptr<gx::Line>() : found.lines.front();
}

void PFChartWidget::mousePressEvent(QMouseEvent* event) {
    if (Forbidden(event)) return;
    setFocus(Qt::OtherFocusReason);
    mousePos_ = event->pos();
    selectionStartedByPress_ = false;
    if (event->button() == Qt::LeftButton) {
        // A left press elsewhere ends the selection of figures; each study decides its own
        // selection from the press and its modifiers.
        gx::WidgetWalker<gx::UnSelFigureNotUnderMouse>(chart_.get(), gx::UnSelFigureNotUnderMouse(event->pos())).Walk();
    }
    chart_->mousePressEvent(*event);
    repaint();
}

void PFChartWidget::mouseMoveEvent(QMouseEvent* event) {
    if (Forbidden(event)) return;
    SetCursor();
    mousePos_ = event->pos();
    if (!rect().contains(event->pos())) return;
    chart_->mouseMoveEvent(*event);
    MoveSelectedPF(*event);
}

void PFChartWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (Forbidden(event)) return;
    if (busy_) return;
    mousePos_ = event->pos();
    if (event->button() == Qt::MiddleButton && toolBar_->IsEnabledCrossCursor()) {
        toolBar_->SetCrossCursorToggled(!toolBar_->IsCrossCursorToggled());
        toolBar_->OnBnClickedCrossCursor();
    }
    if (event->button() == Qt::RightButton) FillContextMenu();
    const bool zoomed = EndSelectedPF(*event);
    chart_->mouseReleaseEvent(*event);
    ExecutePendingUndo();  // a study's move, kept while the chart handled the release
    if (zoomed || event->button() == Qt::MiddleButton || event->button() == Qt::RightButton) {
        update();
        return;
    }
    // A click (not a zoom drag) on a figure selects its line and shows its indicator's
    // properties, unless a study of that line is selected or being placed. The zoom
    // positions count only when this press began a selection; otherwise they are an
    // earlier zoom's.
    const boost::shared_ptr<gx::Line> line = LineUnderMouse(event->pos());
    if (line && line->FindLSSelected().empty() && line->FindLS(gx::LineStudy::StateMoving).empty()) {
        const pf::ScaleEngine& e = *line->GetEngine();
        const long long spread =
            selectionStartedByPress_ ? static_cast<long long>(e.GetZoomStartPos()) - e.GetZoomEndPos() : 0;
        if (spread < 6) ShowIndicatorProp(line);
    }
    update();
}

void PFChartWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    if (Forbidden(event)) return;
    gx::FindUnderMouseObject found =
        gx::WidgetWalker<gx::FindUnderMouseObject>(chart_.get(), gx::FindUnderMouseObject(event->pos())).Walk();
    if (!found.studies.empty()) {
        // A study under the mouse opens its own properties, also while it is being placed.
        found.studies.front()->Select(true);
        found.studies.front()->ShowProperties();
    } else if (found.lines.empty()) {
        ShowProperties();
    }
    chart_->mouseDoubleClickEvent(*event);
    repaint();
}

void PFChartWidget::wheelEvent(QWheelEvent* event) {
    if (busy_) {
        event->ignore();
        return;
    }
    // Qt's X11 platform hands a wheel turned with Alt held over as a horizontal one: the
    // delta is on whichever axis carries it.
    const QPoint delta = event->angleDelta();
    int steps = (delta.y() != 0 ? delta.y() : delta.x()) / 120;
    if (event->modifiers() & Qt::AltModifier) steps *= 10;
    if (event->modifiers() & Qt::ControlModifier) {
        if (steps < 1) toolBar_->OnBnClickedZoomOut(true);
        else toolBar_->OnBnClickedZoomIn(true);
    } else {
        scrollBar_->setValue(scrollBar_->value() - steps);
    }
    event->accept();
}

void PFChartWidget::keyPressEvent(QKeyEvent* event) {
    chart_->keyPressEvent(*event);
    const bool alt = event->modifiers() & Qt::AltModifier;
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    CTimeScrollBar& bar = *scrollBar_;
    switch (event->key()) {
        case Qt::Key_Home: bar.setValue(bar.minimum()); break;
        case Qt::Key_End: bar.setValue(bar.maximum()); break;
        case Qt::Key_Left: bar.setValue(ctrl ? bar.minimum() : bar.value() - (alt ? 10 : 1)); break;
        case Qt::Key_Right: bar.setValue(ctrl ? bar.maximum() : bar.value() + (alt ? 10 : 1)); break;
        case Qt::Key_PageUp: bar.setValue(bar.value() + bar.pageStep()); break;
        case Qt::Key_PageDown: bar.setValue(bar.value() - bar.pageStep()); break;
        case Qt::Key_Plus:
        case Qt::Key_Equal: toolBar_->OnBnClickedZoomIn(true); break;
        case Qt::Key_Minus: toolBar_->OnBnClickedZoomOut(true); break;
        case Qt::Key_Escape:
            CancelCreatingLineStudies();
            if (toolBar_->IsCrossCursorToggled()) {
                toolBar_->SetCrossCursorToggled(false);
                toolBar_->OnBnClickedCrossCursor();
            }
            gx::WidgetWalker<gx::UnSelectingLS>(chart_.get(), gx::UnSelectingLS()).Walk();
            gx::WidgetWalker<gx::UnSelectingLine>(chart_.get(), gx::UnSelectingLine()).Walk();
            UnStartSelectPF();
            update();
            break;
        default: QWidget::keyPressEvent(event); return;
    }
    event->accept();
}

void PFChartWidget::enterEvent(pf::EnterEvent*) { SetCursor(); }

void PFChartWidget::leaveEvent(QEvent*) {
    mousePos_ = QPoint(-1, -1);
    update();
}

bool PFChartWidget::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return CSimpleGUIWidget::event(event);
    QHelpEvent* help = static_cast<QHelpEvent*>(event);
    const boost::shared_ptr<gx::Line> line = LineUnderMouse(help->pos());
    const QString text = line ? line->ToolTipAt(help->pos()) : QString();
    if (text.isEmpty()) {
        QToolTip::showText(help->globalPos(), QString());
        event->ignore();
    } else {
        QToolTip::showText(help->globalPos(), text, this);
    }
    return true;
}

void PFChartWidget::AbandonAction() {
    UnStartSelectPF();
    zoomRecording_ = false;
    pendingUndo_.reset();
    const gx::FindLsByState all = gx::WidgetWalker<gx::FindLsByState>(chart_.get(), gx::FindLsByState(~0)).Walk();
    for (const boost::shared_ptr<gx::LineStudy>& study : all.studies)
        if (study->IsDetached() && study->GetLine()) study->GetLine()->DeleteLineStudy(study.get());
    SetCursor();
    update();
}

// ---- zoom by selection ----

void PFChartWidget::StartSelectedPF(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    const boost::shared_ptr<gx::Area> area = AreaAt(event.pos());
    if (!area || !area->Rect().contains(event.pos())) return;
    currentArea_ = area;
    pf::ScaleEngine& e = *area->GetEngine();
    e.SetFlag(true);
    e.SetZoomStartPos(event.pos().x());
    e.SetZoomEndPos(event.pos().x());
    e.SetZoomMiddlePos(event.pos().x());
    selectionStartedByPress_ = true;
}

void PFChartWidget::MoveSelectedPF(const QMouseEvent& event) {
    const boost::shared_ptr<gx::Area> area = AreaAt(event.pos());
    if (!area || !area->GetEngine()->GetFlag()) return;
    pf::ScaleEngine& e = *area->GetEngine();
    e.SetZoomMiddlePos(event.pos().x());
    e.SetZoomDragEndPos(event.pos().x());  // the end marker follows the mouse
    repaint();
}

bool PFChartWidget::EndSelectedPF(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton || !currentArea_) return false;
    pf::ScaleEngine& e = *currentArea_->GetEngine();
    if (!e.GetFlag()) return false;
    e.SetFlag(false);
    const bool inside = static_cast<bool>(AreaAt(event.pos()));
    const QRect& r = currentArea_->Rect();
    e.SetZoomEndPos(inside ? event.pos().x() : r.right() - r.left() + 1);
    const bool zoom = e.GetEqualsPos();
    if (zoom) {
        RecordScaleUndo(2);
        const int start = e.GetZoomStartPos();
        const int visible = e.GetZoomEndPos() - start;
        for (const boost::shared_ptr<gx::Area>& area : chart_->GetAreas()) {
            pf::ScaleEngine& a = *area->GetEngine();
            a.SetFirstColumn(a.GetFirstColumn() + start);
            a.SetColumnCount(visible);
        }
        scrollBar_->SetQuietly(0, pf::TruncToInt(e.GetX1()) - visible + freeStep_, e.GetFirstColumn());
        scrollBar_->setPageStep(std::max(1, visible));
        UpdateTimeScale();
    }
    zoomRecording_ = false;
    update();
    return zoom;
}

void PFChartWidget::UnStartSelectPF() {
    const boost::shared_ptr<gx::Area> area = AreaAt(mousePos_);
    if (area) area->GetEngine()->SetFlag(false);
}
