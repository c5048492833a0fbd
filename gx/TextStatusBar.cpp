#include "gx/TextStatusBar.h"

#include <QDateTime>
#include <QLabel>
#include <QWidget>
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "data/ScaleEngine.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/LRScale.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "module/CModule.h"

namespace gx {

namespace {

const int kPaneCount = 2;
// The line whose instrument the layer shows: the first line of its first indicator.
const Line* LayerLine(const Layer& layer) {
    const std::vector<boost::shared_ptr<Indicator> >& indicators = layer.GetIndicators();
    if (indicators.empty() || !indicators.front()) return nullptr;
    const std::vector<boost::shared_ptr<Line> >& lines = indicators.front()->GetLines();
    if (lines.empty() || !lines.front()) return nullptr;
    return lines.front().get();
}

// The time of the line's position under `x` (the nearest one it has); false when the line
// has no data. In a window of several instruments each layer's line has its own times.
bool LineTimeAt(const Line& line, const pf::ScaleEngine& engine, int x, std::int32_t* time) {
    const int size = line.Size();
    if (size < 1) return false;
    const std::int64_t column = engine.UnTranslateX(static_cast<int>(
        std::max<std::int64_t>(INT_MIN, std::min<std::int64_t>(INT_MAX, std::int64_t(x) - engine.GetLeft()))));
    const std::int64_t position = std::int64_t(engine.GetFirstColumn()) + column - 1;
    *time = line.GetTime(static_cast<int>(std::max<std::int64_t>(0, std::min<std::int64_t>(position, size - 1))));
    return true;
}

}  // namespace

TextStatusBar::TextStatusBar(void* handle, void* handle2, CModule* module)
    : handle_(handle), handle2_(handle2), module_(module) {
    std::memset(&panes_, 0, sizeof panes_);
    panes_.count = kPaneCount;
}

TextStatusBar::~TextStatusBar() = default;

void TextStatusBar::InitTextStatusBar() {
    CModule* module = module_ ? module_ : CModule::Current();
    if (!module || !module->sendToHost) return;

    // The host answers the registration by writing into the pane record the result word
    // points at.
    coreInterfaceRequest request;
    std::memset(&request, 0, sizeof request);
    std::memcpy(request.kind, "STATUSBAR", 9);
    std::memcpy(request.provider, "TELV", 4);
    std::memcpy(request.provider + 4, "IX", 2);
    std::memcpy(request.name, "telvixStatusBar", 15);
    request.count = 1;
    request.result = reinterpret_cast<void**>(&panes_);
    module->sendToHost(module->hostHandle, MSG_GET_INTERFACE, reinterpret_cast<std::intptr_t>(&request), 0);

    for (int pane = 0; pane < kPaneCount; ++pane) {
        module->sendToHost(module->hostHandle, MSG_STATUS_PANE_ID, reinterpret_cast<std::intptr_t>(&panes_), pane);
        FindLabel(pane);
    }
}

void TextStatusBar::SetTextStatusBar(const boost::shared_ptr<Layer>& layer, const QPoint& point) {
    if (!layer || !layer->Rect().contains(point)) return;
    const Line* line = LayerLine(*layer);
    const fxDataPointArray* array = line ? line->GetArray() : nullptr;
    const boost::shared_ptr<pf::ScaleEngine>& engine = layer->GetEngine();
    if (!array || !engine) return;
    writer_ = layer.get();

    if (QLabel* label = labels_[CORE_STATUS_PANE_TIME]) {
        // A stale time would belong to another place: without times the pane is emptied.
        std::int32_t time = 0;
        label->setText(LineTimeAt(*line, *engine, point.x(), &time)
                           ? QDateTime::fromSecsSinceEpoch(static_cast<qint64>(time), Qt::UTC)
                                 .toString(QStringLiteral("dd.MM.yyyy hh:mm:ss"))
                           : QString());
    }
    if (QLabel* label = labels_[CORE_STATUS_PANE_PRICE]) {
        const double price = engine->UnTranslateY(point.y());
        // A flat range has no price per row; it reads as zero.
        QString text = QStringLiteral("0.0");
        if (price != 0.0 && std::isfinite(price)) text = LRScale::FormatPrice(price, LRScale::PriceDecimals(array->precision));
        label->setText(QStringLiteral("%1").arg(text));
    }
}

void TextStatusBar::ClearTextStatusBar(const Layer* layer) {
    if (writer_ && writer_ != layer) return;
    ClearTextStatusBar();
}

void TextStatusBar::ClearTextStatusBar() {
    writer_ = nullptr;
    CModule* module = module_ ? module_ : CModule::Current();
    for (int pane = 0; pane < kPaneCount; ++pane) {
        if (QLabel* label = labels_[pane]) {
            label->clear();
            continue;
        }
        if (!module || !module->sendToHost) continue;
        module->sendToHost(module->hostHandle, MSG_STATUS_PANE_ID_AGAIN, reinterpret_cast<std::intptr_t>(&panes_),
                           pane);
        FindLabel(pane);
    }
}

QLabel* TextStatusBar::GetLabel(int pane) const {
    return pane >= 0 && pane < kPaneCount ? labels_[pane].data() : nullptr;
}

QLabel* TextStatusBar::FindLabel(int pane) {
    if (pane < 0 || pane >= kPaneCount) return nullptr;
    const std::int32_t id = panes_.windowId[pane];
    if (id == 0) return nullptr;
    // Window ids travel as 32-bit words; they are unsigned on the window system's side.
    QLabel* label = qobject_cast<QLabel*>(QWidget::find(static_cast<WId>(static_cast<std::uint32_t>(id))));
    if (label) labels_[pane] = label;
    return label;
}

}  // namespace gx
