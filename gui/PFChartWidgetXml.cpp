// The chart window's saved state: its settings, its layout in the host's work data, and the
// per-type default parameters of the module's file.
#include <QFontMetrics>
#include <memory>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Grid.h"
#include "gx/LRScale.h"
#include "gx/Line.h"
#include "gx/TimeScale.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "gx/ls/LineStudy.h"
#include "module/PFChartModule.h"
#include "xml/CXMLWorkData.h"

namespace {

// Colours come back fully opaque, whatever was saved.
QColor Opaque(QColor c) {
    c.setAlpha(255);
    return c;
}

}  // namespace

const char* PFChartWidget::StartParamNodeName() const {
    switch (chartType_) {
        case PointFigure: return "PointFigure";
        case Renko: return "Renko";
        case Kagi: return "Kagi";
        default: return nullptr;
    }
}

void PFChartWidget::WriteWidgetData(CXMLWorkData* tree) const {
    if (!tree) return;
    tree->writeColor("GridColor", grid_->GetLineColor());
    tree->writeColor("AreaColor", grid_->GetBackgroundColor());
    tree->writeInteger("GridShow", grid_->IsShown() ? 1 : 0);
    tree->writeInteger("LScaleShow", leftScale_->IsVisible() ? 1 : 0);
    tree->writeInteger("RScaleShow", rightScale_->IsVisible() ? 1 : 0);
    tree->writeInteger("FreeStep", freeStep_);
    tree->writeInteger("bAutoScroll", autoScroll_ ? 1 : 0);
    tree->writeColor("AreasFontColor", areasFontColor_);
    tree->writeFont("AreasFont", areasFont_);
    tree->writeColor("TSBackgroundColor", tsBackgroundColor_);
    tree->writeColor("TSGridColor", tsGridColor_);
}

void PFChartWidget::ReadWidgetData(CXMLWorkData* tree) {
    if (!tree) return;
    grid_->SetShown(tree->readInteger("GridShow", grid_->IsShown() ? 1 : 0) != 0);
    leftScale_->SetVisible(tree->readInteger("LScaleShow", leftScale_->IsVisible() ? 1 : 0) != 0);
    rightScale_->SetVisible(tree->readInteger("RScaleShow", rightScale_->IsVisible() ? 1 : 0) != 0);
    grid_->SetLineColor(Opaque(tree->readColor("GridColor", grid_->GetLineColor())));
    grid_->SetBackgroundColor(Opaque(tree->readColor("AreaColor", grid_->GetBackgroundColor())));
    // A free-step count outside what a window can show is taken as the default.
    const int freeStep = tree->readInteger("FreeStep", 15);
    freeStep_ = freeStep >= 0 && freeStep <= 10000 ? freeStep : 15;
    autoScroll_ = tree->readInteger("bAutoScroll", 0) != 0;
    areasFontColor_ = Opaque(tree->readColor("AreasFontColor", areasFontColor_));
    areasFont_ = tree->readFont("AreasFont", areasFont_);
    tsBackgroundColor_ = Opaque(tree->readColor("TSBackgroundColor", tsBackgroundColor_));
    tsGridColor_ = Opaque(tree->readColor("TSGridColor", tsGridColor_));
    UpdateScalesProperties();
    RefreshProperties();
}

void PFChartWidget::UpdateScalesProperties() {
    // The price scales paint their background in the area colour and write in the scale font;
    // the time scale takes its colours and the font too.
    for (gx::LRScale* scale : {leftScale_.get(), rightScale_.get()}) {
        scale->SetBackgroundColor(GetAreasColor());
        scale->SetFont(areasFont_);
    }
    if (timeScale_) {
        timeScale_->SetColors(tsBackgroundColor_, GetTimeScaleFontColor(), tsGridColor_);
        timeScale_->SetFont(areasFont_);
    }
    PlaceChildren();
    update();
}

void PFChartWidget::ToXML(const boost::shared_ptr<CXMLWorkData>& tree) {
    if (!tree) return;
    std::unique_ptr<CXMLWorkData> node(tree->getFirstNode("PFWidget"));
    if (!node) node.reset(tree->createNode("PFWidget"));
    if (!node) return;
    node->clearNode();
    WriteWidgetData(node.get());
    node->writeParameters();
    gx::WidgetWalker<gx::SaveToXML>(chart_.get(), gx::SaveToXML(node.get())).Walk();
}

void PFChartWidget::FromXML(const boost::shared_ptr<CXMLWorkData>& tree) {
    if (!tree) return;
    std::unique_ptr<CXMLWorkData> node(tree->getFirstNode("PFWidget"));
    if (!node) return;
    const BusyScope busy(this);
    ReadWidgetData(node.get());
    // A loaded layout replaces what the window showed.
    chart_->GetAreas().clear();
    AfterDelete();
    gx::Chart::FromXML(this, node.get());
    // Areas, layers and indicators whose data the host could not give are dropped.
    gx::WidgetWalker2<gx::DeleteSelItems>(chart_.get(), gx::DeleteSelItems()).Walk();
    UpdateScaleWidth();
    // A time scale belongs to a window that shows something: a layout that brings no area
    // leaves the window as empty as a new one.
    if (chart_->GetAreas().empty()) timeScale_.reset();
    else CreateTimeScale();
    PlaceChildren();
    UpdateTimeScale();
    if (!chart_->GetAreas().empty()) {
        SetScrollRange();
        const pf::ScaleEngine& e = *chart_->GetAreas().back()->GetEngine();
        SetZoomSlider(e.GetColumnCount() == FirstDisplayCount(pf::TruncToInt(e.GetX1())));
    }
    zoomRecording_ = false;
    AfterDelete();
}

void PFChartWidget::getStartParam() {
    if (!module_ || !StartParamNodeName()) return;
    std::unique_ptr<CXMLWorkData> tree(module_->getDefaultXml());
    if (!tree || !tree->isValid()) return;
    std::unique_ptr<CXMLWorkData> node(tree->getFirstNode(StartParamNodeName()));
    if (node) ReadWidgetData(node.get());
}

void PFChartWidget::setStartParam() {
    // "Save as default" applied with other changes of the same page stores the new settings.
    if (applyingProperties_) StorePropertyValues();
    if (!module_ || !StartParamNodeName()) return;
    std::unique_ptr<CXMLWorkData> tree(module_->getDefaultXml());
    if (!tree || !tree->isValid()) return;
    std::unique_ptr<CXMLWorkData> node(tree->getFirstNode(StartParamNodeName()));
    if (!node) node.reset(tree->createNode(StartParamNodeName()));
    if (!node) return;
    node->clearNode();
    WriteWidgetData(node.get());
    node->writeParameters();
    tree->writeParameters();
    module_->saveDefaultXml(tree.get());
}

void PFChartWidget::PanelChangeStatus(int, int) {
    gx::WidgetWalker<gx::RenameDpa>(chart_.get(), gx::RenameDpa()).Walk();
    ExpandTimeScale();
    UpdateTitle();
    update();
    SendMainChange(QStringLiteral("TimeFrame Changed"));
}

namespace {

// Whether any node of the tree has the address `handle` (line studies: their host handle).
struct HoldsHandle : gx::Visitor {
    explicit HoldsHandle(const void* h) : handle(h) {}
    void Visit(gx::Chart*) {}
    void Visit(boost::shared_ptr<gx::Area> a) { found = found || a.get() == handle; }
    void Visit(boost::shared_ptr<gx::Layer> l) { found = found || l.get() == handle; }
    void Visit(boost::shared_ptr<gx::Indicator>) {}
    void Visit(boost::shared_ptr<gx::Line> l) {
        found = found || l.get() == handle;
        for (const boost::shared_ptr<gx::LineStudy>& s : l->GetLineStudies()) found = found || s->GetHandle() == handle;
    }
    const void* handle;
    bool found = false;
};

}  // namespace

bool PFChartWidget::HoldsObject(const void* handle) const {
    if (!handle) return false;
    if (handle == this) return true;
    return gx::WidgetWalker<HoldsHandle>(chart_.get(), HoldsHandle(handle)).Walk().found;
}
