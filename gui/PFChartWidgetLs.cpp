// The chart window's line studies: the host's drawing mode, starting a study, deleting one
// through the undo stack, and the host's updates of a study (3073).
#include <QCursor>
#include <cstring>

#include "abi/messages.h"
#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "gx/ls/LineStudy.h"
#include "module/LogHelper.h"
#include "module/PFChartModule.h"

bool PFChartWidget::GetDrawingMode(lsDrawingMode& mode) const {
    std::memset(&mode, 0, sizeof mode);
    if (!module_ || !module_->sendToHost) return false;
    void* gui = module_->GetGlobalMainWindow();
    if (!gui) return false;
    if (module_->sendToHost(gui, MSG_LS_DRAWING_MODE, reinterpret_cast<std::intptr_t>(&mode), 0) != 1) return false;
    mode.name[LS_NAME_BYTES - 1] = 0;
    void* const provider = mode.provider;
    return provider && mode.name[0];
}

boost::shared_ptr<gx::LineStudy> PFChartWidget::StartLineStudy(const QPoint& at, void* provider, const QString& name,
                                                               std::uint32_t color, bool dropped) {
    boost::shared_ptr<gx::LineStudy> study;
    const boost::shared_ptr<gx::Area> area = gx::WidgetWalker<gx::FindArea>(chart_.get(), gx::FindArea(at)).Walk().found;
    if (!area || area->GetLayers().empty() || area->GetLayers().front()->GetIndicators().empty()) return study;
    const boost::shared_ptr<gx::Indicator>& indicator = area->GetLayers().front()->GetIndicators().front();
    if (indicator->GetLines().empty()) return study;
    const boost::shared_ptr<gx::Line> line = indicator->GetLines().front();
    try {
        if (dropped) study.reset(new gx::LineStudy(line.get(), provider, name, at, line->GetEngine(), line->Rect(), color));
        else study.reset(new gx::LineStudy(line.get(), provider, name, line->GetEngine(), line->Rect(), color));
    } catch (const std::exception& e) {
        // The host made no study (4500 gave no id) or failed its first exchange (4510): the
        // chart goes on without it and the host leaves its drawing mode.
        LogHelper::ShowLogInfo(1, 4, QStringLiteral("Line study \"%1\" not created: %2")
                                         .arg(name, QString::fromLocal8Bit(e.what())));
        if (module_ && module_->sendToHost && module_->GetGlobalMainWindow())
            module_->sendToHost(module_->GetGlobalMainWindow(), MSG_LS_END_DRAWING, 0, 0);
        ResetCursor();
        return boost::shared_ptr<gx::LineStudy>();
    }
    gx::WidgetWalker<gx::UnSelectingLS>(chart_.get(), gx::UnSelectingLS()).Walk();
    study->Select(true);
    line->AddLineStudy(study);
    return study;
}

void PFChartWidget::DeleteLineStudy(gx::LineStudy* study) {
    if (!study) return;
    // The study joins the selection and everything selected goes, as the Delete key does:
    // the menu's study and whatever else the trader had selected, in one undo step.
    boost::shared_ptr<gx::LineStudy> keep =
        gx::WidgetWalker<gx::FindLSByHandle>(chart_.get(), gx::FindLSByHandle(study->GetHandle())).Walk().found;
    study->Select(true);
    // Every selected study leaves the host with it, as with the Delete key.
    gx::WidgetWalker<gx::SetManualDeleteLS>(chart_.get(), gx::SetManualDeleteLS()).Walk();
    RecordLineDelete();
    gx::WidgetWalker2<gx::DeleteSelItems>(chart_.get(), gx::DeleteSelItems()).Walk();
    AfterDelete();
}

bool PFChartWidget::OnUpdateLS(const coreUpdateLs* record) {
    if (!record) return false;
    coreUpdateLs changed;
    std::memcpy(&changed, record, sizeof changed);
    void* const array = changed.dataArray;
    const QString kind = QString::fromLocal8Bit(changed.kind, int(strnlen(changed.kind, sizeof changed.kind)));
    if (!array || kind.isEmpty()) return false;
    // Counts out of range are not sized to: the studies stay as they are.
    if (changed.cpCount < 0 || changed.cpCount > gx::LineStudy::kMaxPoints || changed.shapeCount < 0 ||
        changed.shapeCount > gx::LineStudy::kMaxShapes)
        return false;
    const gx::UpdateCountLS counted = gx::WidgetWalker<gx::UpdateCountLS>(
        chart_.get(), gx::UpdateCountLS(array, kind, changed.cpCount, changed.shapeCount)).Walk();
    for (const boost::shared_ptr<gx::LineStudy>& study : counted.failed) {
        // The host failed the exchange: the study has left the host and goes from the chart.
        LogHelper::ShowLogInfo(1, 4, QStringLiteral("Line study \"%1\" removed: the host failed its update")
                                         .arg(study->GetName()));
        if (gx::Line* line = study->GetLine()) line->DeleteLineStudy(study.get());
    }
    gx::WidgetWalker<gx::UpdateLS>(chart_.get(), gx::UpdateLS()).Walk();
    if (counted.updated) update();
    return counted.updated != 0;
}

void PFChartWidget::CancelCreatingLineStudies() {
    const gx::FindLsByState creating =
        gx::WidgetWalker<gx::FindLsByState>(chart_.get(), gx::FindLsByState(gx::LineStudy::StateCreating)).Walk();
    for (const boost::shared_ptr<gx::LineStudy>& study : creating.studies) study->CancelCreatingLS(false);
    if (!creating.studies.empty()) update();
}
