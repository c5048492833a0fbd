#include "gx/Chart.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cstring>

#include "data/DataSource.h"
#include "gui/DefaultMsg.h"
#include "gui/PFChartWidget.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/LRScale.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "gx/ls/LineStudy.h"
#include "module/PFChartModule.h"

namespace gx {

Chart::Chart(PFChartWidget* widget, const QRect& rect) : Object(rect), widget_(widget) {}

Chart::~Chart() {
    if (widget_) widget_->ResetCursor();
}

void Chart::Draw(QPainter& painter) const {
    if (areas_.empty()) {
        const QString text = widget_ ? widget_->DataTypeShow2StringLocale(widget_->GetChartType()) : QString();
        pf::gui::DefaultMsg::Draw(painter, rect_, text, widget_);
    } else {
        for (const boost::shared_ptr<Area>& area : areas_) area->Draw(painter);
    }
    DrawFrame(painter);
}

void Chart::Resize(const QSize& size) {
    Object::Resize(size);
    if (areas_.empty()) return;
    const int share = (rect_.bottom() - rect_.top() + 1) / static_cast<int>(areas_.size());
    for (const boost::shared_ptr<Area>& area : areas_) area->Resize(QSize(rect_.width(), share));
}

void Chart::RePlaceAreas() {
    if (areas_.empty()) return;
    const int share = (rect_.bottom() - rect_.top() + 1) / static_cast<int>(areas_.size());
    for (std::size_t i = 0; i < areas_.size(); ++i) {
        const int top = rect_.top() + static_cast<int>(i) * share;
        areas_[i]->SetRect(QRect(QPoint(rect_.left(), top), QPoint(rect_.right(), top + share - 1)));
    }
}

boost::shared_ptr<Area> Chart::AddArea() {
    boost::shared_ptr<Area> area(new Area(this, rect_));
    areas_.push_back(area);
    RePlaceAreas();
    return area;
}

boost::shared_ptr<Area> Chart::InsertArea(int position) {
    position = std::max(0, std::min(position, GetAreaCount()));
    boost::shared_ptr<Area> area(new Area(this, rect_));
    areas_.insert(areas_.begin() + position, area);
    RePlaceAreas();
    return area;
}

void Chart::DeleteArea(boost::shared_ptr<Area> area) {
    if (!area) return;
    FindIndicatorHandle handles = WidgetWalker<FindIndicatorHandle>(this, FindIndicatorHandle(area.get())).Walk();
    if (widget_) {
        for (void* handle : handles.handles)
            if (boost::shared_ptr<pf::DataSource> source = widget_->FindDataSource(handle))
                widget_->ReleaseDataSource(source);
    }
    areas_.erase(std::remove(areas_.begin(), areas_.end(), area), areas_.end());
    if (widget_) widget_->AfterDelete();
}

void Chart::ResetAreaCaption() {
    for (const boost::shared_ptr<Area>& area : areas_) area->ResetCaption();
}

void Chart::FillContextMenu() {
    for (const boost::shared_ptr<Area>& area : std::vector<boost::shared_ptr<Area> >(areas_)) area->FillContextMenu();
}

int Chart::GetLScaleWidth() const {
    const LRScale* scale = widget_ ? widget_->GetLeftScale() : nullptr;
    return scale && scale->IsVisible() ? widget_->CalcLRScaleWidth() : 0;
}

int Chart::GetRScaleWidth() const {
    const LRScale* scale = widget_ ? widget_->GetRightScale() : nullptr;
    return scale && scale->IsVisible() ? widget_->CalcLRScaleWidth() : 0;
}

TimeScale* Chart::GetTimeScale() const { return widget_ ? widget_->GetTimeScale() : nullptr; }

pf::gui::ToolBar* Chart::GetToolBar() const { return widget_ ? widget_->GetToolBar() : nullptr; }

LRScale* Chart::GetRightScale() const { return widget_ ? widget_->GetRightScale() : nullptr; }

int Chart::GetCrossCursorState() const { return widget_ ? widget_->GetCrossCursorState() : 0; }

QColor Chart::GetAreasColor() const { return widget_ ? widget_->GetAreasColor() : QColor(Qt::white); }

void* Chart::GetMainGUIInterface() const {
    PFChartModule* module = widget_ ? widget_->GetModule() : nullptr;
    return module ? module->GetGlobalMainWindow() : nullptr;
}

QPoint Chart::MapFromGlobal(const QPoint& global) const { return widget_ ? widget_->mapFromGlobal(global) : global; }

QPoint Chart::MousePos() const { return widget_ ? widget_->GetMousePos() : QPoint(-1, -1); }

void Chart::UpdateScreen() const {
    if (widget_) widget_->update();
}

void Chart::RepaintScreen() const {
    if (widget_) widget_->repaint();
}

void Chart::ResetCursor() const {
    if (widget_) widget_->ResetCursor();
}

void Chart::StartSelectedPF(const QMouseEvent& event) const {
    if (widget_) widget_->StartSelectedPF(event);
}

boost::shared_ptr<QMenu> Chart::MakeMenu(boost::shared_ptr<QMenu>& menu) {
    if (!menu) menu.reset(new QMenu(widget_));
    return menu;
}

boost::shared_ptr<QMenu> Chart::GetPropMenu() { return MakeMenu(propMenu_); }
boost::shared_ptr<QMenu> Chart::GetSelectMenu() { return MakeMenu(selectMenu_); }
boost::shared_ptr<QMenu> Chart::GetDeleteMenu() { return MakeMenu(deleteMenu_); }

QString Chart::UpdateTitle() { return widget_ ? widget_->UpdateTitle() : QString(); }

void Chart::RePlaceInstrument() {
    WidgetWalker2<DeleteSelItems>(this, DeleteSelItems()).Walk();
    if (widget_) {
        widget_->AfterDelete();
        widget_->SendMainChange(QStringLiteral("Replace instrument"));
    }
}

void Chart::keyPressEvent(const QKeyEvent& event) {
    for (const boost::shared_ptr<Area>& area : std::vector<boost::shared_ptr<Area> >(areas_)) area->keyPressEvent(event);
    if (event.key() != Qt::Key_Delete) {
        UpdateScreen();
        return;
    }
    // Selected studies are deleted by hand: their host objects go with them.
    WidgetWalker<SetManualDeleteLS>(this, SetManualDeleteLS()).Walk();
    if (widget_) widget_->RecordLineDelete();
    WidgetWalker2<DeleteSelItems>(this, DeleteSelItems()).Walk();
    if (widget_) {
        widget_->UnStartSelectPF();
        widget_->AfterDelete();
    }
}

void Chart::mousePressEvent(const QMouseEvent& event) {
    if (event.button() != Qt::RightButton) selected_ = rect_.contains(event.pos());
    std::vector<boost::shared_ptr<Area> > closing;
    for (const boost::shared_ptr<Area>& area : areas_)
        if (area->CheckClose(event)) closing.push_back(area);
    if (!closing.empty()) {
        // Closing an area: select everything in it, record it for undo, then delete the
        // selection inside it. What is selected in other areas stays: the close is one
        // undo step that holds the area alone.
        for (const boost::shared_ptr<Area>& area : closing) {
            WidgetWalker<SelectAreaLines>(this, SelectAreaLines(area.get())).Walk();
            WidgetWalker<SelectAreaLS>(this, SelectAreaLS(area.get())).Walk();
            if (widget_) widget_->RecordAreaDelete(area->GetIndex());
            WidgetWalker2<DeleteSelItems>(this, DeleteSelItems(area.get())).Walk();
        }
        if (widget_) {
            widget_->AfterDelete();
            widget_->SendMainChange(QStringLiteral("Delete Area"));
        }
        return;
    }
    // In the host's drawing mode a left press on a line starts the chosen study, unless one
    // is still being placed.
    lsDrawingMode mode;
    if (widget_ && event.button() == Qt::LeftButton &&
        WidgetWalker<FindLsByState>(this, FindLsByState(LineStudy::StateCreating)).Walk().studies.empty() &&
        widget_->GetDrawingMode(mode)) {
        const std::uint32_t color = mode.color;
        widget_->StartLineStudy(event.pos(), mode.provider, QString::fromLocal8Bit(mode.name), color, false);
    }
    for (const boost::shared_ptr<Area>& area : std::vector<boost::shared_ptr<Area> >(areas_))
        area->mousePressEvent(event);
}

void Chart::mouseReleaseEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Area>& area : std::vector<boost::shared_ptr<Area> >(areas_))
        area->mouseReleaseEvent(event);
}

void Chart::mouseDoubleClickEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Area>& area : std::vector<boost::shared_ptr<Area> >(areas_))
        area->mouseDoubleClickEvent(event);
}

void Chart::mouseMoveEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Area>& area : std::vector<boost::shared_ptr<Area> >(areas_))
        area->mouseMoveEvent(event);
}

}  // namespace gx
