#include "undo/UndoRecord.h"

#include <QString>
#include <algorithm>
#include <cstring>

#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/IndexRule.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "module/PFChartModule.h"
#include "xml/CXMLWorkData.h"

namespace {

void* Handle(std::uint32_t word) { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(word)); }

}  // namespace

UndoRecord::UndoRecord(PFChartWidget* widget, const char* titleKey) : widget_(widget) {
    std::memset(&begin_, 0, sizeof begin_);
    PFChartModule* module = widget ? widget->GetModule() : nullptr;
    if (!module || !module->sendToHost) return;
    const QString title = module->tr(titleKey);
    const int units = std::min(int(title.size()), 255);
    std::memcpy(begin_.title, title.utf16(), sizeof(coreWChar) * static_cast<std::size_t>(units));
    begin_.hostHandle = widget->GetHostHandle();
    begin_.widget = widget;
    if (module->sendToHost(module->hostHandle, MSG_UNDO_BEGIN, reinterpret_cast<std::intptr_t>(&begin_), 0) != 0)
        return;
    const coreSzNode root = begin_.root;
    if (!root.node || !begin_.recordId) return;
    root_.reset(new CXMLWorkData(module->hostHandle, Handle(root.document), Handle(root.node), module->sendToHost));
}

UndoRecord::~UndoRecord() = default;

bool UndoRecord::Commit() {
    PFChartModule* module = widget_ ? widget_->GetModule() : nullptr;
    if (!root_ || committed_ || !module || !module->sendToHost) return false;
    committed_ = true;
    const std::int32_t id = begin_.recordId;
    return module->sendToHost(module->hostHandle, MSG_UNDO_COMMIT, id, 0) == 0;
}

std::unique_ptr<CXMLWorkData> UndoRecord::Open(PFChartWidget* widget, const coreUndoStart& record) {
    PFChartModule* module = widget ? widget->GetModule() : nullptr;
    if (!module || !module->sendToHost || !record.node) return nullptr;
    return std::unique_ptr<CXMLWorkData>(
        new CXMLWorkData(module->hostHandle, Handle(record.document), Handle(record.node), module->sendToHost));
}

boost::shared_ptr<gx::Line> UndoRecord::LineAt(PFChartWidget* widget, int area, int layer, int indicator, int line) {
    const int a = gx::PositionOf(area), l = gx::PositionOf(layer), i = gx::PositionOf(indicator),
              n = gx::PositionOf(line);
    const boost::shared_ptr<gx::Line> none;
    if (!widget || !widget->GetChart()) return none;
    const std::vector<boost::shared_ptr<gx::Area> >& areas = widget->GetChart()->GetAreas();
    if (a < 0 || a >= static_cast<int>(areas.size())) return none;
    const std::vector<boost::shared_ptr<gx::Layer> >& layers = areas[std::size_t(a)]->GetLayers();
    if (l < 0 || l >= static_cast<int>(layers.size())) return none;
    const std::vector<boost::shared_ptr<gx::Indicator> >& indicators = layers[std::size_t(l)]->GetIndicators();
    if (i < 0 || i >= static_cast<int>(indicators.size())) return none;
    const std::vector<boost::shared_ptr<gx::Line> >& lines = indicators[std::size_t(i)]->GetLines();
    if (n < 0 || n >= static_cast<int>(lines.size())) return none;
    return lines[std::size_t(n)];
}

int UndoRecord::StudyIndex(const gx::Line& line, const gx::LineStudy* study) {
    const std::vector<boost::shared_ptr<gx::LineStudy> >& studies = line.GetLineStudies();
    for (std::size_t k = 0; k < studies.size(); ++k)
        if (studies[k].get() == study) return static_cast<int>(k);
    return -1;
}

int UndoRecord::NodeIndex(PFChartWidget* widget, const CXMLWorkData& node) {
    PFChartModule* module = widget ? widget->GetModule() : nullptr;
    if (!module || !module->sendToHost) return -1;
    coreSzNode described;
    node.fillNodeData(described);
    return module->sendToHost(module->hostHandle, MSG_UNDO_NODE_INDEX, reinterpret_cast<std::intptr_t>(&described), 0);
}

void UndoRecord::CopyWords(const coreUndoStart& record, coreUndoRefresh* result) {
    if (!result) return;
    result->first = record.document;
    result->third = record.node;
    result->fourth = record.widget;
}
