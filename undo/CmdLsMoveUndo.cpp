#include "undo/CmdLsMoveUndo.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "gui/PFChartWidget.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "gx/ls/LineStudy.h"
#include "undo/UndoRecord.h"
#include "undo/XMLTreeWalker.h"
#include "xml/CXMLWorkData.h"

namespace {

const int kObjectLineStudy = 2;

struct MovePop {
    PFChartWidget* widget;
    int restored = 0;
    void Visit(CXMLWorkData* node) {
        std::unique_ptr<CXMLWorkData> study(node->getFirstNode("LineStudy"));
        if (!study || study->readInteger("MoveLS", 0) != 1) return;
        if (study->readInteger("ObjectType", -1) != kObjectLineStudy) return;
        const void* handle = reinterpret_cast<const void*>(static_cast<std::intptr_t>(study->readInteger("ObjHandle", 0)));
        gx::FindLSByHandle found =
            gx::WidgetWalker<gx::FindLSByHandle>(widget->GetChart(), gx::FindLSByHandle(handle)).Walk();
        if (!handle || !found.found) return;
        const int count = study->readInteger("ctrlPointCount", 0);
        if (count < 0 || count > gx::LineStudy::kMaxPoints) return;
        std::vector<lsPointShape> points;
        std::unique_ptr<CXMLWorkData> child(study->getFirstNode("ControlPoint"));
        while (child && static_cast<int>(points.size()) < count) {
            lsPointShape p;
            std::memset(&p, 0, sizeof p);
            p.m_typePoint = child->readInteger("m_typePoint", LS_POINT_PLACED);
            p.m_xTime = child->readInteger("m_xTime", 0);
            p.value = child->readFloat("m_y", 0.0f);
            points.push_back(p);
            child.reset(study->getNextNode());
        }
        if (count != found.found->GetCPCount()) found.found->UpdateCPCount(count);
        found.found->RestorePoints(points);
        ++restored;
    }
};

}  // namespace

void CmdLsMoveUndo::Execute(int, void* target, void* extra, void*, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    const gx::LineStudy* study = static_cast<const gx::LineStudy*>(extra);
    if (!widget || !study) return;
    UndoRecord record(widget, "G0137");
    if (!record.Root()) return;
    std::unique_ptr<CXMLWorkData> node(record.Root()->createNode("Node"));
    // The points as they were when the move began.
    std::unique_ptr<CXMLWorkData> saved = study->ToXML(node.get(), study->GetMoveSnapshot());
    if (!saved) return;
    saved->writeInteger("MoveLS", 1);
    saved->writeInteger("nodeIndex", UndoRecord::NodeIndex(widget, *saved));
    saved->writeParameters();
    node->writeParameters();
    record.Commit();
}

void CmdLsMoveUndo::UnExecute(int, void* target, void* record, void* result, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (!widget || !record) return;
    const coreUndoStart start = *static_cast<const coreUndoStart*>(record);
    std::unique_ptr<CXMLWorkData> root = UndoRecord::Open(widget, start);
    MovePop pop{widget};
    XMLTreeWalker<MovePop>(root.get(), pop).Walk();
    if (pop.restored) widget->update();
    UndoRecord::CopyWords(start, static_cast<coreUndoRefresh*>(result));
}
