#include "undo/CmdAnyLineDelUndo.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <memory>
#include <tuple>
#include <vector>

#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/IndexRule.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/ls/LineStudy.h"
#include "module/PFChartModule.h"
#include "undo/UndoRecord.h"
#include "undo/XMLTreeWalker.h"
#include "xml/CXMLWorkData.h"

namespace {

const int kObjectIndicator = 0;
const int kObjectLineStudy = 2;

// One indicator of the record, read back from its "PFIndicator" nodes (one per line it lost).
struct Entry {
    int area;
    int layer;
    int index;
    int linesLost;         // its "PFIndicator" nodes
    int lineCount;         // "nLineCount": its lines before the deletion
    int indicatorCount;    // "IndicatorCount": its layer's indicators before the deletion
    int layerCount;        // "LayerCount": its area's layers before the deletion
    bool areaGone = false;
    bool layerGone = false;
    bool indicatorGone = false;
    void* node;            // its first node's host handle, opened again when its turn comes
};

// Hands each child `name` of a record's "Node" to `visit`.
template <class F>
void ForEachSaved(CXMLWorkData* node, const char* name, F visit) {
    std::unique_ptr<CXMLWorkData> child(node->getFirstNode(name));
    while (child) {
        visit(child.get());
        child.reset(node->getNextNode());
    }
}

// Collects the record's "PFIndicator" nodes, one entry per indicator; they are put back in
// order of place afterwards (the order of the refresh), so that every area, layer and
// indicator lands where it was. What the deletion took follows from the counts the nodes
// keep: an indicator went with all its lines, a layer with all its indicators, an area with
// all its layers.
struct LinePop {
    std::vector<Entry> entries;
    void Visit(CXMLWorkData* record) {
        ForEachSaved(record, "PFIndicator", [this](CXMLWorkData* node) {
            if (node->readInteger("ObjectType", -1) != kObjectIndicator) return;
            // Places are values of the index rule; a missing one reads as no place.
            Entry e{gx::PositionOf(node->readInteger("nArea", gx::kNoIndex)),
                    gx::PositionOf(node->readInteger("nLayer", gx::kNoIndex)),
                    gx::PositionOf(node->readInteger("nodeIndex", gx::kNoIndex)),
                    1,
                    node->readInteger("nLineCount", 0),
                    node->readInteger("IndicatorCount", 0),
                    node->readInteger("LayerCount", 0),
                    false, false, false,
                    node->node()};
            if (e.area < 0 || e.layer < 0 || e.index < 0) return;
            for (Entry& known : entries)
                if (known.area == e.area && known.layer == e.layer && known.index == e.index) {
                    ++known.linesLost;
                    return;
                }
            entries.push_back(e);
        });
    }
    // Marks what went, from the counts.
    void Settle() {
        std::map<std::pair<int, int>, int> goneInLayer;
        for (Entry& e : entries) {
            e.indicatorGone = e.linesLost >= e.lineCount;
            if (e.indicatorGone) ++goneInLayer[std::make_pair(e.area, e.layer)];
        }
        std::map<int, std::set<int> > goneLayers;
        for (Entry& e : entries) {
            e.layerGone = e.indicatorGone && goneInLayer[std::make_pair(e.area, e.layer)] >= e.indicatorCount;
            if (e.layerGone) goneLayers[e.area].insert(e.layer);
        }
        for (Entry& e : entries) e.areaGone = e.layerGone && static_cast<int>(goneLayers[e.area].size()) >= e.layerCount;
    }
};

}  // namespace

namespace {

// Every line study that goes with the deletion (selected, or on a selected line): its
// "LineStudy" node as saved in a layout, marked as deleted, with the index the host gives
// the node (3147) as "nodeIndex" and its place among the studies of its line as
// "nLineStudy". Places are values of the index rule.
void PushLineStudies(CXMLWorkData* root, PFChartWidget* widget) {
    const std::vector<boost::shared_ptr<gx::Area> >& areas = widget->GetChart()->GetAreas();
    for (std::size_t a = 0; a < areas.size(); ++a)
        for (std::size_t l = 0; l < areas[a]->GetLayers().size(); ++l) {
            const gx::Layer& layer = *areas[a]->GetLayers()[l];
            for (std::size_t i = 0; i < layer.GetIndicators().size(); ++i) {
                const gx::Indicator& indicator = *layer.GetIndicators()[i];
                for (std::size_t n = 0; n < indicator.GetLines().size(); ++n) {
                    const gx::Line& line = *indicator.GetLines()[n];
                    const std::vector<boost::shared_ptr<gx::LineStudy> >& studies = line.GetLineStudies();
                    for (std::size_t k = 0; k < studies.size(); ++k) {
                        const boost::shared_ptr<gx::LineStudy>& study = studies[k];
                        if (!study->IsSelected() && !line.IsSelected()) continue;
                        // The study as saved in a layout, then its place as positions.
                        std::unique_ptr<CXMLWorkData> saved = study->ToXML(root);
                        if (!saved) continue;
                        saved->writeInteger("nArea", gx::IndexAt(a));
                        saved->writeInteger("nLayer", gx::IndexAt(l));
                        saved->writeInteger("nIndicator", gx::IndexAt(i));
                        saved->writeInteger("nLine", gx::IndexAt(n));
                        saved->writeInteger("DeleteLS", 1);
                        saved->writeInteger("nLineStudy", gx::IndexAt(k));
                        saved->writeInteger("nodeIndex", UndoRecord::NodeIndex(widget, *saved));
                        saved->writeParameters();
                    }
                }
            }
        }
}

// The deleted line studies of a record, put back on their lines once the lines are back,
// each at its old place among its line's studies (a later move record finds it there). The
// record lists a line's studies in their order, so each lands where it was.
struct LineStudyPop {
    PFChartWidget* widget;
    int restored = 0;
    void Visit(CXMLWorkData* record) {
        ForEachSaved(record, "LineStudy", [this](CXMLWorkData* saved) { Restore(saved); });
    }
    void Restore(CXMLWorkData* saved) {
        if (saved->readInteger("ObjectType", -1) != kObjectLineStudy || saved->readInteger("DeleteLS", 0) != 1) return;
        const boost::shared_ptr<gx::Line> line =
            UndoRecord::LineAt(widget, saved->readInteger("nArea", gx::kNoIndex),
                               saved->readInteger("nLayer", gx::kNoIndex),
                               saved->readInteger("nIndicator", gx::kNoIndex), saved->readInteger("nLine", gx::kNoIndex));
        if (!line) return;
        // The host's study went with the deletion: it is made anew from the saved points.
        const boost::shared_ptr<gx::LineStudy> study = gx::LineStudy::FromXML(line, saved);
        if (!study) return;
        ++restored;
        std::vector<boost::shared_ptr<gx::LineStudy> >& studies = line->GetLineStudies();
        const int from = UndoRecord::StudyIndex(*line, study.get());
        const int to = gx::PositionOf(saved->readInteger("nLineStudy", gx::kNoIndex));
        if (from < 0 || to < 0 || to >= from) return;
        studies.erase(studies.begin() + from);
        studies.insert(studies.begin() + to, study);
    }
};

}  // namespace

void CmdAnyLineDelUndo::Execute(int, void* target, void*, void*, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (!widget) return;
    const std::vector<boost::shared_ptr<gx::Area> >& areas = widget->GetChart()->GetAreas();
    bool any = false;
    for (const boost::shared_ptr<gx::Area>& area : areas)
        for (const boost::shared_ptr<gx::Layer>& layer : area->GetLayers())
            for (const boost::shared_ptr<gx::Indicator>& indicator : layer->GetIndicators())
                for (const boost::shared_ptr<gx::Line>& line : indicator->GetLines()) {
                    any = any || line->IsSelected();
                    for (const boost::shared_ptr<gx::LineStudy>& study : line->GetLineStudies())
                        any = any || study->IsSelected();
                }
    if (!any) return;
    UndoRecord record(widget, "G0134");
    if (!record.Root()) return;
    // One "Node" under the record's root holds everything: a "PFIndicator" with its "PFLine"
    // per selected line, and a "LineStudy" per study that goes. Each indicator node keeps,
    // beside its layout keys and its place ("nodeIndex" among its layer's indicators), how
    // many lines its indicator had ("nLineCount"), how many indicators its layer had
    // ("IndicatorCount") and how many layers its area had ("LayerCount"): undo works out
    // from them what the deletion took.
    std::unique_ptr<CXMLWorkData> content(record.Root()->createNode("Node"));
    if (!content) return;
    for (std::size_t a = 0; a < areas.size(); ++a) {
        const gx::Area& area = *areas[a];
        for (std::size_t l = 0; l < area.GetLayers().size(); ++l) {
            const gx::Layer& layer = *area.GetLayers()[l];
            for (std::size_t i = 0; i < layer.GetIndicators().size(); ++i) {
                const boost::shared_ptr<gx::Indicator>& indicator = layer.GetIndicators()[i];
                for (const boost::shared_ptr<gx::Line>& line : indicator->GetLines()) {
                    if (!line->IsSelected()) continue;
                    std::unique_ptr<CXMLWorkData> saved(content->createNode("PFIndicator"));
                    if (!saved) continue;
                    indicator->ToXML(saved.get());
                    saved->writeInteger("ObjectType", kObjectIndicator);
                    saved->writeInteger("nArea", gx::IndexAt(a));
                    saved->writeInteger("nLayer", gx::IndexAt(l));
                    saved->writeInteger("nodeIndex", gx::IndexAt(i));
                    saved->writeInteger("nLineCount", indicator->GetLineCount());
                    saved->writeInteger("IndicatorCount", layer.GetIndicatorCount());
                    saved->writeInteger("LayerCount", area.GetLayerCount());
                    saved->writeParameters();
                    std::unique_ptr<CXMLWorkData> lineNode(saved->createNode("PFLine"));
                    if (!lineNode) continue;
                    line->ToXML(lineNode.get());
                    lineNode->writeParameters();
                }
            }
        }
    }
    PushLineStudies(content.get(), widget);
    record.Commit();
}

void CmdAnyLineDelUndo::UnExecute(int, void* target, void* record, void* result, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (!widget || !record) return;
    const coreUndoStart start = *static_cast<const coreUndoStart*>(record);
    std::unique_ptr<CXMLWorkData> root = UndoRecord::Open(widget, start);
    LinePop pop;
    XMLTreeWalker<LinePop>(root.get(), pop).Walk();
    pop.Settle();
    std::stable_sort(pop.entries.begin(), pop.entries.end(), [](const Entry& x, const Entry& y) {
        return std::tie(x.area, x.layer, x.index) < std::tie(y.area, y.layer, y.index);
    });
    gx::Chart& chart = *widget->GetChart();
    std::map<int, boost::shared_ptr<gx::Area> > madeAreas;
    std::map<std::pair<int, int>, boost::shared_ptr<gx::Layer> > madeLayers;
    int restored = 0;
    for (const Entry& e : pop.entries) {
        // Places come from a record the host keeps: one that no longer fits the chart (an
        // edited record) is left out rather than guessed at.
        boost::shared_ptr<gx::Area> area;
        if (e.areaGone) {
            boost::shared_ptr<gx::Area>& made = madeAreas[e.area];
            if (!made && e.area <= chart.GetAreaCount()) made = chart.InsertArea(e.area);
            area = made;
        } else if (e.area < chart.GetAreaCount()) {
            area = chart.GetAreas()[static_cast<std::size_t>(e.area)];
        }
        if (!area) continue;
        boost::shared_ptr<gx::Layer> layer;
        if (e.layerGone || e.areaGone) {
            boost::shared_ptr<gx::Layer>& made = madeLayers[std::make_pair(e.area, e.layer)];
            if (!made && e.layer <= area->GetLayerCount()) made = area->InsertLayer(e.layer);
            layer = made;
        } else if (e.layer < area->GetLayerCount()) {
            layer = area->GetLayers()[static_cast<std::size_t>(e.layer)];
        }
        if (!layer) continue;
        PFChartModule* module = widget->GetModule();
        if (!module) continue;
        const std::unique_ptr<CXMLWorkData> node(
            new CXMLWorkData(module->hostHandle, root->document(), e.node, module->sendToHost));
        if (e.indicatorGone || e.layerGone || e.areaGone) {
            const int before = layer->GetIndicatorCount();
            if (e.index > before) continue;
            gx::Indicator::FromXMLNode(layer, node.get());
            if (layer->GetIndicatorCount() == before) continue;
            // Appended at the end: moved to its place.
            std::vector<boost::shared_ptr<gx::Indicator> >& all = layer->GetIndicators();
            const boost::shared_ptr<gx::Indicator> back = all.back();
            all.pop_back();
            all.insert(all.begin() + std::min<std::size_t>(static_cast<std::size_t>(e.index), all.size()), back);
        } else if (e.index < layer->GetIndicatorCount()) {
            // Only the recorded lines come back, each at its saved place (the record lists
            // them in their order); the lines that stayed are not touched.
            const boost::shared_ptr<gx::Indicator> indicator =
                layer->GetIndicators()[static_cast<std::size_t>(e.index)];
            ForEachSaved(node.get(), "PFLine", [&indicator](CXMLWorkData* lineNode) {
                if (indicator->RestoreLine(gx::PositionOf(lineNode->readInteger("Index", gx::kNoIndex))))
                    gx::Line::FromXML(indicator, lineNode);
            });
        } else {
            continue;
        }
        ++restored;
    }
    // Places made for indicators that could not come back (the host made no data for them)
    // go again: no empty layer or area is left behind.
    for (const auto& m : madeLayers) {
        const boost::shared_ptr<gx::Layer>& layer = m.second;
        if (!layer || layer->GetIndicatorCount() > 0 || !layer->GetArea()) continue;
        std::vector<boost::shared_ptr<gx::Layer> >& layers = layer->GetArea()->GetLayers();
        layers.erase(std::remove(layers.begin(), layers.end(), layer), layers.end());
    }
    for (const auto& m : madeAreas)
        if (m.second && m.second->GetLayers().empty()) chart.DeleteArea(m.second);
    LineStudyPop studies{widget};
    XMLTreeWalker<LineStudyPop>(root.get(), studies).Walk();
    restored += studies.restored;
    // The host hears of the end of the undo (3142) once, whether or not anything came back,
    // with what every command of the undo rebuilt (an area's close puts the area back
    // before this command runs).
    if (restored) widget->AfterRestore(restored);
    widget->SendUndoRefreshed();
    UndoRecord::CopyWords(start, static_cast<coreUndoRefresh*>(result));
}
