// The chart window's undo: commands made before a change, and the host's undo requests.
#include <QPointer>
#include <cstring>
#include <memory>
#include <vector>
#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/ls/LineStudy.h"
#include "gx/ls/lsControlPointsShapesWrap.h"
#include "module/PFChartModule.h"
#include "undo/CommandFactory.h"
#include "undo/UndoRecord.h"

// A line study's move between its release and its record: the command, the study (gone if
// it is deleted meanwhile) and the points it had when the move began (the study forgets
// them once released).
struct PFChartWidget::PendingUndo {
    std::unique_ptr<Command> command;
    QPointer<gx::LineStudy> study;
    std::vector<lsPointShape> before;
};

void PFChartWidget::RecordScaleUndo(int zoomKind) {
    ExecutePendingUndo();
    if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(CommandFactory::ScaleChange))
        command->Execute(zoomKind, this, nullptr, nullptr, nullptr);
}

void PFChartWidget::RecordLineDelete() {
    ExecutePendingUndo();
    if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(CommandFactory::LineDelete))
        command->Execute(0, this, nullptr, nullptr, nullptr);
}

void PFChartWidget::RecordAreaDelete(int index) {
    ExecutePendingUndo();
    if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(CommandFactory::AreaDelete))
        command->Execute(index, this, nullptr, nullptr, nullptr);
}

void PFChartWidget::RecordLineStudyMove(gx::LineStudy* study) {
    // One step per release: a move released while another waits adds nothing.
    if (!study || pendingUndo_) return;
    const gx::lsControlPointsShapesWrap* snapshot = study->GetMoveSnapshot();
    if (!snapshot) return;
    std::shared_ptr<PendingUndo> pending = std::make_shared<PendingUndo>();
    pending->command = CommandFactory::Instance().Create(CommandFactory::LineStudyMove);
    if (!pending->command) return;
    pending->study = study;
    pending->before = snapshot->In();
    pendingUndo_ = pending;
}

void PFChartWidget::ExecutePendingUndo() {
    if (!pendingUndo_) return;
    // Taken first: the record's messages may bring the widget back here.
    const std::shared_ptr<PendingUndo> pending = pendingUndo_;
    pendingUndo_.reset();
    if (!pending->study) return;
    lsControlPointsShapes record;
    std::memset(&record, 0, sizeof record);
    record.inCount = static_cast<std::int32_t>(pending->before.size());
    record.in = pending->before.data();
    const gx::lsControlPointsShapesWrap before(record, std::vector<std::int32_t>());
    pending->command->Execute(0, this, pending->study.data(), const_cast<gx::lsControlPointsShapesWrap*>(&before),
                              nullptr);
}

void PFChartWidget::AfterRestore(int count) {
    UpdateScaleWidth();
    PlaceChildren();
    CreateTimeScale();
    UpdateTimeScale();
    SetScrollRange();
    UpdateTitle();
    update();
    undoRestored_ += count;
}

void PFChartWidget::SendUndoRefreshed() {
    const int count = undoRestored_;
    undoRestored_ = 0;
    if (module_ && module_->sendToHost)
        module_->sendToHost(module_->hostHandle, MSG_UNDO_REFRESHED, reinterpret_cast<std::intptr_t>(this), count);
}

int PFChartWidget::UndoPop(const coreUndoStart* record, coreUndoRefresh* result) {
    if (!record || !result) return 1;
    std::memset(result, 0, sizeof *result);
    const BusyScope busy(this);
    undoRestored_ = 0;
    const coreUndoStart start = *record;
    // A move not yet recorded is not on the host's stack: the host undoes what came before.
    pendingUndo_.reset();
    // Records of the host's own kinds are not the module's to undo.
    if ((start.kind == CORE_UNDO_KIND_HOST7 || start.kind == CORE_UNDO_KIND_HOST5) && !replacePending_) {
        UndoRecord::CopyWords(start, result);
        return 0;
    }
    // Which command wrote the record is not known: each looks for the nodes of its kind.
    for (int code : {CommandFactory::AreaDelete, CommandFactory::LineDelete, CommandFactory::LineStudyMove,
                     CommandFactory::ScaleChange})
        if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(code))
            command->UnExecute(0, this, const_cast<coreUndoStart*>(&start), result, nullptr);
    return 0;
}

