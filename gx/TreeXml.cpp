// Saving the chart tree into the host's work data and building it again from there.
//
// Node names and attributes, in the order written:
//   "PFChart"     AreaCount
//   "PFArea"      ObjectType (1), LayerCount
//   "PFLayer"     IndicatorCount
//   "PFIndicator" InstrumentName, InstrumentType, NameProvider, InstrumentPeriodChar,
//                 InstrumentPeriodLen, InstrumentPeriodStartTime, PrimitiveStyle,
//                 StartPosition, VisibleFigures, nArea, nLayer, ObjectType (0), then the
//                 host's description of the data object (FInterface, FProvider, FName)
//   "PFLine"      Index, FirstVisibleFigure, then the data point array's description
//   "LineStudy"   one per finished line study of the line, with its "ControlPoint"s
//                 (gx::LineStudy::ToXML)
// Loading walks the same names. The counts are written for the host and for people reading
// the document; loading is driven by the nodes that are there, so a count that is wrong,
// missing or absurd changes nothing. Every node there is taken: a layout loads as whole as
// it was saved (the host's entry count of a node is the only bound, see CXMLWorkData).
#include <algorithm>
#include <memory>

#include "data/DataSource.h"
#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/IndexRule.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/Visitors.h"
#include "gx/ls/LineStudy.h"
#include "xml/CXMLWorkData.h"

namespace gx {

namespace {

const int kObjectIndicator = 0;
const int kObjectArea = 1;

// Calls `build` for every child `name` of `parent`, in the host's order.
template <class Build>
void ForEachChild(CXMLWorkData* parent, const char* name, Build build) {
    if (!parent) return;
    std::unique_ptr<CXMLWorkData> node(parent->getFirstNode(name));
    while (node) {
        build(node.get());
        node.reset(parent->getNextNode());
    }
}

boost::shared_ptr<CXMLWorkData> Child(CXMLWorkData* parent, const char* name) {
    return boost::shared_ptr<CXMLWorkData>(parent ? parent->createNode(name) : nullptr);
}

}  // namespace

// ---- saving ----

void SaveToXML::Visit(Chart* chart) {
    chartNode = Child(root, "PFChart");
    if (!chartNode) return;
    chart->ToXML(chartNode.get());
    chartNode->writeParameters();
    ++nodes;
}

void SaveToXML::Visit(boost::shared_ptr<Area> area) {
    areaNode = Child(chartNode.get(), "PFArea");
    if (!areaNode) return;
    area->ToXML(areaNode.get());
    areaNode->writeParameters();
    ++nodes;
}

void SaveToXML::Visit(boost::shared_ptr<Layer> layer) {
    layerNode = Child(areaNode.get(), "PFLayer");
    if (!layerNode) return;
    layer->ToXML(layerNode.get());
    layerNode->writeParameters();
    ++nodes;
}

void SaveToXML::Visit(boost::shared_ptr<Indicator> indicator) {
    indicatorNode = Child(layerNode.get(), "PFIndicator");
    if (!indicatorNode) return;
    indicator->ToXML(indicatorNode.get());
    indicatorNode->writeParameters();
    ++nodes;
}

void SaveToXML::Visit(boost::shared_ptr<Line> line) {
    boost::shared_ptr<CXMLWorkData> node = Child(indicatorNode.get(), "PFLine");
    if (!node) return;
    line->ToXML(node.get());
    node->writeParameters();
    ++nodes;
    // A study still being placed is not part of the layout.
    for (const boost::shared_ptr<LineStudy>& study : line->GetLineStudies())
        if (!(study->GetState() & LineStudy::StateCreating)) study->ToXML(node.get());
}

void Chart::ToXML(CXMLWorkData* node) const { node->writeInteger("AreaCount", GetAreaCount()); }

void Area::ToXML(CXMLWorkData* node) const {
    node->writeInteger("ObjectType", kObjectArea);
    node->writeInteger("LayerCount", GetLayerCount());
}

void Layer::ToXML(CXMLWorkData* node) const { node->writeInteger("IndicatorCount", GetIndicatorCount()); }

void Indicator::ToXML(CXMLWorkData* node) const {
    node->writeString("InstrumentName", origin_.symbol);
    node->writeString("InstrumentType", origin_.type);
    node->writeString("NameProvider", origin_.provider);
    node->writeInteger("InstrumentPeriodChar", static_cast<unsigned char>(origin_.periodType));
    node->writeInteger("InstrumentPeriodLen", origin_.periodLength);
    node->writeInteger("InstrumentPeriodStartTime", origin_.startTime);
    node->writeInteger("PrimitiveStyle", origin_.style);
    node->writeInteger("StartPosition", engine_ ? engine_->GetFirstColumn() : 0);
    node->writeInteger("VisibleFigures", engine_ ? engine_->GetColumnCount() : 0);
    Area* area = layer_ ? layer_->GetArea() : nullptr;
    node->writeInteger("nArea", area ? area->GetIndex() : -1);
    node->writeInteger("nLayer", layer_ ? layer_->GetIndex() : -1);
    node->writeInteger("ObjectType", kObjectIndicator);
    if (source_) node->writeHeadNode(source_->GetHandle());
}

void Line::ToXML(CXMLWorkData* node) const {
    node->writeInteger("Index", GetIndex());
    node->writeInteger("FirstVisibleFigure", firstVisibleFigure_);
    node->writeDpaInfo(array_);
}

void Area::SaveSubtree(const boost::shared_ptr<Area>& area, CXMLWorkData* parent) {
    if (!area || !parent) return;
    SaveToXML save(parent);
    save.chartNode.reset(parent, [](CXMLWorkData*) {});  // the area goes straight under `parent`
    save.Visit(area);
    for (const boost::shared_ptr<Layer>& layer : area->GetLayers()) {
        save.Visit(layer);
        for (const boost::shared_ptr<Indicator>& indicator : layer->GetIndicators()) {
            save.Visit(indicator);
            for (const boost::shared_ptr<Line>& line : indicator->GetLines()) save.Visit(line);
        }
    }
}

// ---- loading ----

boost::shared_ptr<Area> Area::InsertFromXML(Chart& chart, CXMLWorkData* areaNode, int position) {
    const boost::shared_ptr<Area> area = chart.InsertArea(position);
    Layer::FromXML(area, areaNode);
    return area;
}

bool Indicator::RestoreLine(int index) {
    if (!source_ || index < 0 || index > GetLineCount()) return false;
    // The deleted line's array lies between the arrays of the lines around its place.
    const std::size_t at = static_cast<std::size_t>(index);
    const int after = at > 0 ? lines_[at - 1]->GetSourceIndex() : -1;
    const int before = at < lines_.size() && lines_[at]->GetSourceIndex() >= 0 ? lines_[at]->GetSourceIndex()
                                                                                : std::max(arraysSeen_, after + 2);
    const int sourceIndex = after + 1;
    if (sourceIndex >= before) return false;
    fxDataPointArray* array = source_->GetArray(sourceIndex);
    if (!array) return false;
    const boost::shared_ptr<Line> line(new Line(this, array, engine_, rect_));
    line->SetSourceIndex(sourceIndex);
    lines_.insert(lines_.begin() + index, line);
    return true;
}


bool Chart::FromXML(PFChartWidget* widget, CXMLWorkData* widgetNode) {
    if (!widget || !widget->GetChart() || !widgetNode) return false;
    std::unique_ptr<CXMLWorkData> chartNode(widgetNode->getFirstNode("PFChart"));
    if (!chartNode) return false;
    Area::FromXML(*widget->GetChart(), chartNode.get());
    return true;
}

void Area::FromXML(Chart& chart, CXMLWorkData* chartNode) {
    ForEachChild(chartNode, "PFArea", [&](CXMLWorkData* areaNode) {
        const boost::shared_ptr<Area> area = chart.AddArea();
        Layer::FromXML(area, areaNode);
    });
}

void Layer::FromXML(const boost::shared_ptr<Area>& area, CXMLWorkData* areaNode) {
    ForEachChild(areaNode, "PFLayer", [&](CXMLWorkData* layerNode) {
        Indicator::FromXML(area->AddLayer(), layerNode);
    });
}

void Indicator::FromXML(const boost::shared_ptr<Layer>& layer, CXMLWorkData* layerNode) {
    ForEachChild(layerNode, "PFIndicator", [&](CXMLWorkData* node) { FromXMLNode(layer, node); });
}

void Indicator::FromXMLNode(const boost::shared_ptr<Layer>& layer, CXMLWorkData* node) {
    Area* area = layer->GetArea();
    Chart* chart = area ? area->GetChart() : nullptr;
    PFChartWidget* widget = chart ? chart->GetWidget() : nullptr;
    if (!widget || !node) return;
    Origin origin;
    origin.symbol = node->readString("InstrumentName");
    origin.type = node->readString("InstrumentType");
    origin.provider = node->readString("NameProvider");
    origin.periodType = static_cast<char>(node->readInteger("InstrumentPeriodChar", 0));
    origin.periodLength = node->readInteger("InstrumentPeriodLen", 0);
    origin.startTime = node->readInteger("InstrumentPeriodStartTime", 0);
    origin.style = node->readInteger("PrimitiveStyle", 0);
    if (origin.symbol.isEmpty() || origin.periodLength < 0) return;
    namePeriod period;
    period.type = origin.periodType;
    period.length = origin.periodLength;
    const boost::shared_ptr<pf::DataSource> source = widget->CreateDataSource(nullptr, origin.symbol, period);
    if (!source) return;
    const boost::shared_ptr<Indicator> indicator = layer->AddIndicator(source);
    indicator->SetOrigin(origin);
    ForEachChild(node, "PFLine", [&](CXMLWorkData* lineNode) { Line::FromXML(indicator, lineNode); });
    widget->RestorePositions(area, node->readInteger("StartPosition", 0), node->readInteger("VisibleFigures", -1));
    // A rebuilt indicator (a loaded layout, an undo) leaves the tool bar's state buttons
    // as a new window has them.
    if (pf::gui::ToolBar* toolBar = widget->GetToolBar()) toolBar->ResetStateButtonList(false);
}

void Line::FromXML(const boost::shared_ptr<Indicator>& indicator, CXMLWorkData* lineNode) {
    // The lines come with the data; the saved index (0, -1, -2 ... for the first, second,
    // third line) picks the one these values belong to.
    const int index = PositionOf(lineNode->readInteger("Index", 0));
    if (index < 0 || index >= indicator->GetLineCount()) return;
    const boost::shared_ptr<Line>& line = indicator->GetLines()[static_cast<std::size_t>(index)];
    line->SetFirstVisibleFigure(std::max(0, lineNode->readInteger("FirstVisibleFigure", 0)));
    ForEachChild(lineNode, "LineStudy",
                 [&](CXMLWorkData* studyNode) { LineStudy::FromXML(line, studyNode); });
}

}  // namespace gx
