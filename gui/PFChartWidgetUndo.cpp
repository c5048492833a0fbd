// The chart window's undo: commands made before a change, and the host's undo requests.
#include <cstring>
#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "module/PFChartModule.h"
#include "undo/CommandFactory.h"
#include "undo/UndoRecord.h"

void PFChartWidget::RecordScaleUndo(int zoomKind) {
    if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(CommandFactory::ScaleChange))
        command->Execute(zoomKind, this, nullptr, nullptr, nullptr);
}

void PFChartWidget::RecordLineDelete() {
    if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(CommandFactory::LineDelete))
        command->Execute(0, this, nullptr, nullptr, nullptr);
}

void PFChartWidget::RecordAreaDelete(int position) {
    if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(CommandFactory::AreaDelete))
        command->Execute(position, this, nullptr, nullptr, nullptr);
}

void PFChartWidget::AfterRestore(int count) {
    UpdateScaleWidth();
    PlaceChildren();
    CreateTimeScale();
    UpdateTimeScale();
    SetScrollRange();
    UpdateTitle();
    update();
    if (module_ && module_->sendToHost)
        module_->sendToHost(module_->hostHandle, MSG_UNDO_REFRESHED, reinterpret_cast<std::intptr_t>(this), count);
}

int PFChartWidget::UndoPop(const coreUndoStart* record, coreUndoRefresh* result) {
    if (!record || !result) return 1;
    std::memset(result, 0, sizeof *result);
    const coreUndoStart start = *record;
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

void PFChartWidget::RecordLineStudyMove(gx::LineStudy* study) {
    if (!study) return;
    if (std::unique_ptr<Command> command = CommandFactory::Instance().Create(CommandFactory::LineStudyMove))
        command->Execute(0, this, study, nullptr, nullptr);
}
