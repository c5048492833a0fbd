#include "gx/Indicator.h"

#include <algorithm>

#include <QAction>
#include <QMenu>
#include <QPainter>

#include "data/DataSource.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/IndexRule.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "module/PFChartModule.h"

namespace gx {

Indicator::Indicator(Layer* layer, const boost::shared_ptr<pf::DataSource>& source, const QRect& rect,
                     const boost::shared_ptr<pf::ScaleEngine>& engine)
    : Object(rect), layer_(layer), source_(source), engine_(engine) {
    if (!source_) return;
    const int count = source_->GetList().count;
    for (int i = 0; i < count; ++i)
        if (fxDataPointArray* array = source_->GetArray(i)) AddLine(array, i);
    arraysSeen_ = std::max(0, count);
}

Indicator::~Indicator() = default;

boost::shared_ptr<Line> Indicator::AddLine(fxDataPointArray* array, int sourceIndex) {
    boost::shared_ptr<Line> line(new Line(this, array, engine_, rect_));
    line->SetSourceIndex(sourceIndex);
    lines_.push_back(line);
    return line;
}

bool Indicator::UpdateLines() {
    if (!source_) return false;
    bool changed = false;
    // Each line follows the array of its own position: after a line was deleted by hand the
    // positions of the lines and of the arrays no longer match.
    for (const boost::shared_ptr<Line>& line : lines_) {
        fxDataPointArray* array = line->GetSourceIndex() >= 0 ? source_->GetArray(line->GetSourceIndex()) : nullptr;
        if (!array) continue;
        if (line->GetArray() != array) {
            line->SetArray(array);
            changed = true;
        } else {
            line->DataChanged();
        }
    }
    // Arrays the source did not have before are new lines.
    const int count = source_->GetList().count;
    for (int i = arraysSeen_; i < count; ++i) {
        if (fxDataPointArray* array = source_->GetArray(i)) {
            AddLine(array, i);
            changed = true;
        }
    }
    arraysSeen_ = std::max(arraysSeen_, count);
    return changed;
}

int Indicator::GetIndex() const { return layer_ ? IndexOf(layer_->GetIndicators(), this) : -1; }

Chart* Indicator::GetChart() const {
    Area* area = layer_ ? layer_->GetArea() : nullptr;
    return area ? area->GetChart() : nullptr;
}

void* Indicator::GetHandle() const { return source_ ? source_->GetHandle() : nullptr; }

void Indicator::Draw(QPainter& painter) const {
    if (layer_ && layer_->GetArea()) layer_->GetArea()->ResetCaption();
    for (const boost::shared_ptr<Line>& line : lines_) line->Draw(painter);
}

void Indicator::Resize(const QSize& size) {
    Object::Resize(size);
    for (const boost::shared_ptr<Line>& line : lines_) line->Resize(size);
}

void Indicator::SetRect(const QRect& rect) {
    Object::SetRect(rect);
    for (const boost::shared_ptr<Line>& line : lines_) line->SetRect(rect);
}

void Indicator::Select(bool selected) { Object::Select(selected); }

int Indicator::RequestLineIndex(fxDataPointArray* array) const {
    const CModule* module = source_ ? source_->GetModule() : CModule::Current();
    if (!module || !module->sendToHost) return 0;
    return module->sendToHost(module->hostHandle, MSG_LINE_INDEX, reinterpret_cast<std::intptr_t>(array), 0);
}

QString Indicator::GetCaptionPeriod() const {
    if (!source_) return QString();
    namePeriod period = source_->GetInstrument().period;
    // Data asked for in the instrument's own period (type 0): the arrays name the period.
    if (period.type == 0 && source_->GetArray(0)) period = source_->GetArray(0)->name.period;
    switch (period.type) {
        case 'I':
            if (period.length == 0) return QStringLiteral("Tick");
            if (period.length % 60 == 0) return QStringLiteral("%1 Hour").arg(period.length / 60);
            return QStringLiteral("%1 Min").arg(period.length);
        case 'D': return QStringLiteral("Day");
        case 'W': return QStringLiteral("Week");
        case 'M': return QStringLiteral("Month");
        case 'Y': return QStringLiteral("Year");
        default: return QString();
    }
}

QString Indicator::MakeCaptionIndicator() const {
    if (!source_) return QString();
    const QString name = source_->GetBaseName();
    const QString period = GetCaptionPeriod();
    if (period.isEmpty()) return name;
    return name + QLatin1Char('/') + period;
}

void Indicator::FillContextMenu() {
    if (Chart* chart = GetChart()) {
        AddToMenu(chart->GetSelectMenu(), &Indicator::OnSelectedIndicator);
        AddToMenu(chart->GetPropMenu(), &Indicator::OnShowPropIndicator);
        AddToMenu(chart->GetDeleteMenu(), &Indicator::OnDeleteIndicator);
    }
    for (const boost::shared_ptr<Line>& line : std::vector<boost::shared_ptr<Line> >(lines_)) line->FillContextMenu();
}

void Indicator::AddToMenu(const boost::shared_ptr<QMenu>& menu, void (Indicator::*slot)()) {
    if (!menu || !source_) return;
    const namePeriod period = source_->GetInstrument().period;
    const QChar type = period.type ? QChar::fromLatin1(period.type) : QLatin1Char(' ');
    const QString text = source_->GetBaseName() + QStringLiteral(" %1, %2").arg(type).arg(period.length);
    QAction* action = menu->addAction(text);
    pf::gui::ConnectGuarded(action, &QAction::triggered, this, slot);
}

void Indicator::OnSelectedIndicator() { OnShowPropIndicator(); }

void Indicator::OnShowPropIndicator() {
    Chart* chart = GetChart();
    if (!chart) return;
    WidgetWalker<UnSelectingLS>(chart, UnSelectingLS()).Walk();
    WidgetWalker<UnSelectingLine>(chart, UnSelectingLine()).Walk();
    for (const boost::shared_ptr<Line>& line : lines_) line->Select(true);
    const CModule* module = source_ ? source_->GetModule() : CModule::Current();
    void* gui = chart->GetMainGUIInterface();
    if (module && module->sendToHost && gui)
        module->sendToHost(gui, MSG_SHOW_PROPERTIES, reinterpret_cast<std::intptr_t>(chart->GetWidget()),
                           reinterpret_cast<std::intptr_t>(GetHandle()));
    chart->UpdateScreen();
}

void Indicator::OnDeleteIndicator() {
    Chart* chart = GetChart();
    if (!chart) return;
    for (const boost::shared_ptr<Line>& line : lines_) line->Select(true);
    PFChartWidget* widget = chart->GetWidget();
    if (widget) widget->RecordLineDelete();
    WidgetWalker<SetManualDeleteLS>(chart, SetManualDeleteLS()).Walk();
    // The cascade may release this indicator: nothing of it is used after the walk.
    WidgetWalker2<DeleteSelItems>(chart, DeleteSelItems()).Walk();
    if (widget) widget->AfterDelete();
}

void Indicator::mousePressEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Line>& line : std::vector<boost::shared_ptr<Line> >(lines_)) line->mousePressEvent(event);
}

void Indicator::mouseReleaseEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Line>& line : std::vector<boost::shared_ptr<Line> >(lines_)) line->mouseReleaseEvent(event);
}

void Indicator::mouseDoubleClickEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Line>& line : std::vector<boost::shared_ptr<Line> >(lines_))
        line->mouseDoubleClickEvent(event);
}

void Indicator::keyPressEvent(const QKeyEvent& event) {
    for (const boost::shared_ptr<Line>& line : std::vector<boost::shared_ptr<Line> >(lines_)) line->keyPressEvent(event);
}

void Indicator::mouseMoveEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Line>& line : std::vector<boost::shared_ptr<Line> >(lines_)) line->mouseMoveEvent(event);
}

}  // namespace gx
