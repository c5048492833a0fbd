#include "undo/CmdLsMoveUndo.h"

#include <cstring>
#include <memory>
#include <vector>

#include "gui/PFChartWidget.h"
#include "gx/IndexRule.h"
#include "gx/Line.h"
#include "gx/ls/LineStudy.h"
#include "gx/ls/lsControlPointsShapesWrap.h"
#include "undo/UndoRecord.h"
#include "undo/XMLTreeWalker.h"
#include "xml/CXMLWorkData.h"

namespace {

const int kObjectLineStudy = 2;

struct MovePop {
    PFChartWidget* widget;
    int restored = 0;
    void Visit(CXMLWorkData* node) {
        std::unique_ptr<CXMLWorkData> saved(node->getFirstNode("LineStudy"));
        if (!saved || saved->readInteger("MoveLS", 0) != 1) return;
        if (saved->readInteger("ObjectType", -1) != kObjectLineStudy) return;
        const boost::shared_ptr<gx::Line> line =
            UndoRecord::LineAt(widget, saved->readInteger("nArea", gx::kNoIndex),
                               saved->readInteger("nLayer", gx::kNoIndex),
                               saved->readInteger("nIndicator", gx::kNoIndex), saved->readInteger("nLine", gx::kNoIndex));
        if (!line) return;
        const int index = gx::PositionOf(saved->readInteger("nLineStudy", gx::kNoIndex));
        const std::vector<boost::shared_ptr<gx::LineStudy> >& studies = line->GetLineStudies();
        if (index < 0 || index >= static_cast<int>(studies.size())) return;
        gx::LineStudy& study = *studies[std::size_t(index)];
        // A place now held by a study of another kind is not the one that moved.
        if (study.GetName() != saved->readString("ObjectName")) return;
        const int count = saved->readInteger("ctrlPointCount", 0);
        if (count < 0 || count > gx::LineStudy::kMaxPoints) return;
        std::vector<lsPointShape> points;
        std::unique_ptr<CXMLWorkData> child(saved->getFirstNode("ControlPoint"));
        while (child && static_cast<int>(points.size()) < count) {
            lsPointShape p;
            std::memset(&p, 0, sizeof p);
            p.m_typePoint = child->readInteger("m_typePoint", LS_POINT_PLACED);
            p.m_xTime = child->readInteger("m_xTime", 0);
            p.value = child->readFloat("m_y", 0.0f);
            points.push_back(p);
            child.reset(saved->getNextNode());
        }
        if (count != study.GetCPCount()) study.UpdateCPCount(count);
        study.RestorePoints(points);
        ++restored;
    }
};

}  // namespace

void CmdLsMoveUndo::Execute(int, void* target, void* extra, void* before, void*) {
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    const gx::LineStudy* study = static_cast<const gx::LineStudy*>(extra);
    if (!widget || !study || !study->GetLine()) return;
    const gx::lsControlPointsShapesWrap* snapshot =
        before ? static_cast<const gx::lsControlPointsShapesWrap*>(before) : study->GetMoveSnapshot();
    const int index = UndoRecord::StudyIndex(*study->GetLine(), study);
    if (!snapshot || index < 0) return;
    UndoRecord record(widget, "G0137");
    if (!record.Root()) return;
    std::unique_ptr<CXMLWorkData> node(record.Root()->createNode("Node"));
    if (!node) return;
    // The points as they were when the move began; the node carries the place of the line.
    std::unique_ptr<CXMLWorkData> saved = study->ToXML(node.get(), snapshot);
    if (!saved) return;
    saved->writeInteger("MoveLS", 1);
    saved->writeInteger("nLineStudy", gx::IndexAt(std::size_t(index)));
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
