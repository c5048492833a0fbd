#include "undo/CmdScaleUndo.h"

#include <memory>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "undo/UndoRecord.h"
#include "undo/XMLTreeWalker.h"
#include "xml/CXMLWorkData.h"

namespace {

const int kObjectScrollBar = 3;

struct ScalePop {
    PFChartWidget* widget;
    int restored = 0;
    void Visit(CXMLWorkData* node) {
        if (node->readInteger("ObjectType", -1) != kObjectScrollBar) return;
        widget->GetTimeScrollBar()->FromXml(node);
        ++restored;
        // A slider or selection zoom: the view's positions as they were.
        if (node->readInteger("nZoomType", -1) != 2 || !node->hasAttribute("StartPosition")) return;
        const int first = node->readInteger("StartPosition", 0);
        const int visible = node->readInteger("VisibleFigures", -1);
        for (const boost::shared_ptr<gx::Area>& area : widget->GetChart()->GetAreas())
            widget->RestorePositions(area.get(), first, visible);
        widget->SetScrollRange();
    }
};

}  // namespace

void CmdScaleUndo::Execute(int parameter, void* target, void*, void*, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (!widget || widget->GetChart()->GetAreas().empty()) return;
    UndoRecord record(widget, "G0138");
    if (!record.Root()) return;
    // The view's positions go into the scroll bar's node with its zoom state, in one write.
    const pf::ScaleEngine& e = *widget->GetChart()->GetAreas().front()->GetEngine();
    widget->GetTimeScrollBar()->ToXml(record.Root(), parameter, [&e](CXMLWorkData& node) {
        node.writeInteger("StartPosition", e.GetFirstColumn());
        node.writeInteger("VisibleFigures", e.GetColumnCount());
    });
    record.Commit();
}

void CmdScaleUndo::UnExecute(int, void* target, void* record, void* result, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (!widget || !record) return;
    const coreUndoStart start = *static_cast<const coreUndoStart*>(record);
    std::unique_ptr<CXMLWorkData> root = UndoRecord::Open(widget, start);
    ScalePop pop{widget};
    XMLTreeWalker<ScalePop>(root.get(), pop).Walk();
    if (pop.restored) {
        widget->UpdateTimeScale();
        widget->update();
    }
    UndoRecord::CopyWords(start, static_cast<coreUndoRefresh*>(result));
}
