#include "gui/ToolBar.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <algorithm>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "module/PFChartModule.h"

namespace pf {
namespace gui {

namespace {

QToolButton* MakeButton(QWidget* parent, const QString& icon, const QString& tip) {
    QToolButton* b = new QToolButton(parent);
    b->setIcon(QIcon(icon));
    b->setToolTip(tip);
    b->setAutoRaise(true);
    b->setFocusPolicy(Qt::NoFocus);
    return b;
}

QString Tr(PFChartWidget* widget, const char* key) {
    return widget && widget->GetModule() ? widget->GetModule()->tr(key) : QString::fromLatin1(key);
}

}  // namespace

ToolBar::ToolBar(PFChartWidget* widget) : QWidget(widget), widget_(widget) {
    QHBoxLayout* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 1, 2, 1);
    layout->setSpacing(2);
    zoomIn_ = MakeButton(this, QStringLiteral(":/zm1.png"), Tr(widget, "C0046ZoomIN"));
    zoomOut_ = MakeButton(this, QStringLiteral(":/zm2.png"), Tr(widget, "PF0021"));
    slider_ = new QSlider(Qt::Horizontal, this);
    slider_->setToolTip(Tr(widget, "G0045Message"));
    slider_->setFocusPolicy(Qt::NoFocus);
    slider_->setMaximumWidth(160);
    cross_ = MakeButton(this, QStringLiteral(":/cross.png"), Tr(widget, "G0006"));
    cross_->setCheckable(true);
    layout->addWidget(zoomIn_);
    layout->addWidget(zoomOut_);
    layout->addWidget(slider_);
    layout->addWidget(cross_);
    layout->addStretch(1);
    connect(zoomIn_, SIGNAL(clicked()), this, SLOT(ZoomInClicked()));
    connect(zoomOut_, SIGNAL(clicked()), this, SLOT(ZoomOutClicked()));
    connect(slider_, SIGNAL(valueChanged(int)), this, SLOT(SliderMoved(int)));
    connect(cross_, SIGNAL(clicked()), this, SLOT(CrossClicked()));
}

ToolBar::~ToolBar() = default;

void ToolBar::ZoomInClicked() { OnBnClickedZoomIn(true); }
void ToolBar::ZoomOutClicked() { OnBnClickedZoomOut(true); }
void ToolBar::SliderMoved(int value) { OnChangeZoom(value); }
void ToolBar::CrossClicked() { OnBnClickedCrossCursor(); }

void ToolBar::SetScrollRange(int total, int visible, int first, bool setValue) {
    CTimeScrollBar* bar = widget_->GetTimeScrollBar();
    if (!bar) return;
    bar->SetQuietly(0, total - visible + widget_->GetFreeStep(), setValue ? first : bar->value());
    bar->setPageStep(std::max(1, visible));
}

void ToolBar::OnBnClickedZoomIn(bool) {
    gx::Chart* chart = widget_->GetChart();
    if (!chart || chart->GetAreas().empty()) return;
    for (const boost::shared_ptr<gx::Area>& area : chart->GetAreas()) {
        ScaleEngine& e = *area->GetEngine();
        const int visible = e.GetColumnCount();
        if (visible < 6) return;
        const int total = TruncToInt(e.GetX1());
        const int newVisible = TruncToInt(visible / kZoomFactor);
        e.SetFirstColumn(e.GetFirstColumn() + visible - newVisible);
        e.SetColumnCount(newVisible);
        SetScrollRange(total, newVisible, e.GetFirstColumn(), true);
        widget_->SetZoomRecording(false);
        const QSignalBlocker block(slider_);
        slider_->setMaximum(total - 4);
        slider_->setValue(total - newVisible);
    }
    widget_->UpdateTimeScale();
    widget_->update();
}

void ToolBar::OnBnClickedZoomOut(bool) {
    gx::Chart* chart = widget_->GetChart();
    if (!chart || chart->GetAreas().empty()) return;
    for (const boost::shared_ptr<gx::Area>& area : chart->GetAreas()) {
        ScaleEngine& e = *area->GetEngine();
        const int visible = e.GetColumnCount();
        const int total = TruncToInt(e.GetX1());
        const int newVisible = TruncToInt(visible * kZoomFactor);
        e.SetFirstColumn(std::max(0, e.GetFirstColumn() + visible - newVisible));
        e.SetColumnCount(std::min(total + widget_->GetFreeStep(), newVisible));
        SetScrollRange(total, e.GetColumnCount(), e.GetFirstColumn(), true);
        widget_->SetZoomRecording(false);
        const QSignalBlocker block(slider_);
        slider_->setValue(total - e.GetColumnCount());
    }
    widget_->UpdateTimeScale();
    widget_->update();
}

void ToolBar::OnChangeZoom(int value) {
    gx::Chart* chart = widget_->GetChart();
    if (!chart || chart->GetAreas().empty()) return;
    if (!widget_->IsZoomRecording()) widget_->SetZoomRecording(true);
    for (const boost::shared_ptr<gx::Area>& area : chart->GetAreas()) {
        ScaleEngine& e = *area->GetEngine();
        const int total = TruncToInt(e.GetX1());
        e.SetColumnCount(std::max(0, total - value));
        SetScrollRange(total, e.GetColumnCount(), e.GetFirstColumn(), false);
    }
    widget_->UpdateTimeScale();
    widget_->update();
    if (widget_->GetModule()) widget_->GetModule()->SendMainAboutChange();
}

void ToolBar::OnBnClickedCrossCursor() {
    widget_->SetCursor();
    widget_->update();
}

void ToolBar::OnBnReleasedCrossCursor() { OnBnClickedCrossCursor(); }

void ToolBar::SetCrossCursorToggled(bool on) { cross_->setChecked(on); }

bool ToolBar::IsEnabledCrossCursor() const { return cross_->isEnabled(); }

bool ToolBar::IsCrossCursorToggled() const { return cross_->isChecked(); }

void ToolBar::ResetStateButtonList(bool repaint) {
    cross_->setChecked(false);
    if (repaint) widget_->update();
}

}  // namespace gui
}  // namespace pf
