#include "undo/CmdAreaDelUndo.h"

#include <memory>

#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/IndexRule.h"
#include "undo/UndoRecord.h"
#include "undo/XMLTreeWalker.h"
#include "xml/CXMLWorkData.h"

namespace {

const int kObjectArea = 1;

struct AreaPop {
    PFChartWidget* widget;
    int restored = 0;
    void Visit(CXMLWorkData* node) {
        if (node->readInteger("ObjectType", -1) != kObjectArea) return;
        std::unique_ptr<CXMLWorkData> areaNode(node->getFirstNode("PFArea"));
        const int position = gx::PositionOf(node->readInteger("nArea", gx::kNoIndex));
        // A place that does not fit the chart (an edited record) is left out.
        if (!areaNode || position < 0 || position > widget->GetChart()->GetAreaCount()) return;
        gx::Area::InsertFromXML(*widget->GetChart(), areaNode.get(), position);
        ++restored;
    }
};

}  // namespace

// `parameter` is the area's index (the index rule's value, as written into the record).
void CmdAreaDelUndo::Execute(int parameter, void* target, void*, void*, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (!widget) return;
    const std::vector<boost::shared_ptr<gx::Area> >& areas = widget->GetChart()->GetAreas();
    const int position = gx::PositionOf(parameter);
    if (position < 0 || position >= static_cast<int>(areas.size())) return;
    UndoRecord record(widget, "G0135");
    if (!record.Root()) return;
    std::unique_ptr<CXMLWorkData> node(record.Root()->createNode("Node"));
    if (!node) return;
    node->writeInteger("ObjectType", kObjectArea);
    node->writeInteger("nArea", parameter);
    node->writeParameters();
    gx::Area::SaveSubtree(areas[static_cast<std::size_t>(position)], node.get());
    record.Commit();
}

void CmdAreaDelUndo::UnExecute(int, void* target, void* record, void* result, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (!widget || !record) return;
    const coreUndoStart start = *static_cast<const coreUndoStart*>(record);
    std::unique_ptr<CXMLWorkData> root = UndoRecord::Open(widget, start);
    AreaPop pop{widget};
    XMLTreeWalker<AreaPop>(root.get(), pop).Walk();
    if (pop.restored) widget->AfterRestore(pop.restored);
    UndoRecord::CopyWords(start, static_cast<coreUndoRefresh*>(result));
}
