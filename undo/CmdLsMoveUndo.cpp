#include "undo/CmdLsMoveUndo.h"

#include <cstdint>
#include <memory>

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
        const void* handle = reinterpret_cast<const void*>(static_cast<std::uintptr_t>(
            static_cast<std::uint32_t>(study->readInteger("ObjHandle", 0))));
        gx::FindLSByHandle found =
            gx::WidgetWalker<gx::FindLSByHandle>(widget->GetChart(), gx::FindLSByHandle(handle)).Walk();
        if (!handle || !found.found) return;
        found.found->UpdateCPCount(study->readInteger("ctrlPointCount", found.found->GetCPCount()));
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
    std::unique_ptr<CXMLWorkData> saved(node ? node->createNode("LineStudy") : nullptr);
    if (!saved) return;
    saved->writeInteger("ObjHandle", static_cast<int>(reinterpret_cast<std::uintptr_t>(study->GetHandle())));
    saved->writeInteger("ObjectType", kObjectLineStudy);
    saved->writeInteger("ctrlPointCount", study->GetCPCount());
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
