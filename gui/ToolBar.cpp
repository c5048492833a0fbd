#include "gui/ToolBar.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPixmap>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <algorithm>
#include <climits>

#include "data/ScaleEngine.h"
#include "gui/CSkin.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "module/FontOperationSystemFactory.h"
#include "module/PFChartModule.h"

namespace pf {
namespace gui {

namespace {

QToolButton* MakeButton(QWidget* parent, const QString& icon, const QString& tip) {
    QToolButton* b = new Guarded<QToolButton>(parent);
    b->setIcon(QIcon(icon));
    b->setToolTip(tip);
    b->setAutoRaise(true);
    b->setFocusPolicy(Qt::NoFocus);
    return b;
}

QString Tr(PFChartWidget* widget, const char* key) {
    return widget && widget->GetModule() ? widget->GetModule()->tr(key) : QString::fromLatin1(key);
}

// Sums of engine values are formed in 64 bits and brought back into the int range, so that
// no total the host reports can overflow them.
int ToInt(long long v) { return static_cast<int>(std::max<long long>(INT_MIN, std::min<long long>(INT_MAX, v))); }

}  // namespace

ToolBar::ToolBar(PFChartWidget* widget) : QWidget(widget), widget_(widget) {
    QHBoxLayout* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 1, 2, 1);
    layout->setSpacing(2);
    zoomIn_ = MakeButton(this, QStringLiteral(":/zm1.png"), Tr(widget, "C0046ZoomIN"));
    zoomOut_ = MakeButton(this, QStringLiteral(":/zm2.png"), Tr(widget, "PF0021"));
    slider_ = new Guarded<QSlider>(Qt::Horizontal, this);
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
    ConnectGuarded(zoomIn_, &QToolButton::clicked, this, &ToolBar::ZoomInClicked);
    ConnectGuarded(zoomOut_, &QToolButton::clicked, this, &ToolBar::ZoomOutClicked);
    ConnectGuarded(slider_, &QSlider::valueChanged, this, &ToolBar::OnChangeZoom);
    ConnectGuarded(cross_, &QToolButton::clicked, this, &ToolBar::OnBnClickedCrossCursor);
}

ToolBar::~ToolBar() = default;

void ToolBar::ApplySkin(const CSkin& skin) {
    QPalette palette = this->palette();
    QBrush back(skin.GetToolBarBackColor());
    const QImage& image = skin.GetToolBarImage();
    if (!image.isNull() && image.height() > 0) {
        // Stretched to the bar's height, repeated along its width.
        const int height = PFChartWidget::kToolBarHeight;
        QImage strip = image.scaled(image.width(), height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QPixmap tile(strip.width(), height);
        tile.fill(skin.GetToolBarBackColor());
        {
            QPainter painter(&tile);
            painter.drawImage(0, 0, strip);
        }
        back.setTexture(tile);
    }
    palette.setBrush(QPalette::Window, back);
    palette.setColor(QPalette::WindowText, skin.GetToolBarFrontColor());
    palette.setColor(QPalette::ButtonText, skin.GetToolBarFrontColor());
    setPalette(palette);
    setAutoFillBackground(true);
    setFont(font::GetOperationSystemFont(skin.GetFont()));
    if (!skin.GetZoomInIcon().isNull()) zoomIn_->setIcon(QIcon(QPixmap::fromImage(skin.GetZoomInIcon())));
    if (!skin.GetZoomOutIcon().isNull()) zoomOut_->setIcon(QIcon(QPixmap::fromImage(skin.GetZoomOutIcon())));
}

void ToolBar::ZoomInClicked() { OnBnClickedZoomIn(true); }
void ToolBar::ZoomOutClicked() { OnBnClickedZoomOut(true); }

void ToolBar::RecordUndo(int zoomKind) {
    // Losing the undo step is better than losing the zoom the user asked for.
    RunGuarded([&] { widget_->RecordScaleUndo(zoomKind); });
}

void ToolBar::SetScrollRange(int total, int visible, int first, bool setValue) {
    CTimeScrollBar* bar = widget_->GetTimeScrollBar();
    if (!bar) return;
    const int value = setValue ? first : bar->value();
    bar->SetQuietly(0, ToInt(static_cast<long long>(total) - visible + widget_->GetFreeStep()), value);
    bar->setPageStep(std::max(1, visible));
    // A range that no longer holds the value clamps it; the areas then show what the bar
    // says, as after any move of the bar.
    if (bar->value() != value) bar->OnValueChanged(bar->value());
}

void ToolBar::MoveSliderQuietly(bool setMaximum, int maximum, int value) {
    const QSignalBlocker block(slider_);
    if (setMaximum) slider_->setMaximum(maximum);
    slider_->setValue(value);
}

void ToolBar::AfterZoomButton(int sliderBefore, bool changed) {
    if (slider_->value() != sliderBefore) widget_->SetZoomRecording(true);
    if (changed && widget_->GetModule()) widget_->GetModule()->SendMainAboutChange();
}

void ToolBar::OnBnClickedZoomIn(bool record) {
    gx::Chart* chart = widget_->GetChart();
    if (!chart || chart->GetAreas().empty()) return;
    // Nothing will change: no undo step, no repaint.
    if (chart->GetAreas().front()->GetEngine()->GetColumnCount() < kMinZoomInVisible) return;
    if (record) RecordUndo(ZoomKindIn);
    const int sliderBefore = slider_->value();
    // Areas are zoomed in order; one showing too few positions ends the zoom there, without
    // a repaint, leaving the areas before it zoomed.
    bool complete = true;
    for (const boost::shared_ptr<gx::Area>& area : chart->GetAreas()) {
        ScaleEngine& e = *area->GetEngine();
        const int visible = e.GetColumnCount();
        if (visible < kMinZoomInVisible) {
            complete = false;
            break;
        }
        const int total = TruncToInt(e.GetX1());
        const int newVisible = TruncToInt(visible / kZoomFactor);
        // The right edge stays where it was.
        e.SetFirstColumn(ToInt(static_cast<long long>(e.GetFirstColumn()) + visible - newVisible));
        e.SetColumnCount(newVisible);
        SetScrollRange(total, newVisible, e.GetFirstColumn(), true);
        widget_->SetZoomRecording(false);
        MoveSliderQuietly(true, ToInt(static_cast<long long>(total) - kMinSliderVisible),
                          ToInt(static_cast<long long>(total) - newVisible));
    }
    AfterZoomButton(sliderBefore, true);
    if (!complete) return;
    widget_->UpdateTimeScale();
    widget_->update();
}

void ToolBar::OnBnClickedZoomOut(bool record) {
    gx::Chart* chart = widget_->GetChart();
    if (!chart || chart->GetAreas().empty()) return;
    if (record) RecordUndo(ZoomKindOut);
    const int sliderBefore = slider_->value();
    bool changed = false;
    for (const boost::shared_ptr<gx::Area>& area : chart->GetAreas()) {
        ScaleEngine& e = *area->GetEngine();
        const int visible = e.GetColumnCount();
        const int first = e.GetFirstColumn();
        const int total = TruncToInt(e.GetX1());
        const long long newVisible = static_cast<long long>(visible * kZoomFactor);
        e.SetFirstColumn(ToInt(std::max(0LL, static_cast<long long>(first) + visible - newVisible)));
        e.SetColumnCount(ToInt(std::min(static_cast<long long>(total) + widget_->GetFreeStep(), newVisible)));
        changed = changed || e.GetFirstColumn() != first || e.GetColumnCount() != visible;
        SetScrollRange(total, e.GetColumnCount(), e.GetFirstColumn(), true);
        widget_->SetZoomRecording(false);
        MoveSliderQuietly(false, 0, ToInt(static_cast<long long>(total) - e.GetColumnCount()));
    }
    AfterZoomButton(sliderBefore, changed);
    widget_->UpdateTimeScale();
    widget_->update();
}

void ToolBar::OnChangeZoom(int value) {
    gx::Chart* chart = widget_->GetChart();
    if (!chart || chart->GetAreas().empty()) return;
    if (widget_->IsZoomRecording()) RecordUndo(ZoomKindSlider);
    else widget_->SetZoomRecording(true);
    for (const boost::shared_ptr<gx::Area>& area : chart->GetAreas()) {
        ScaleEngine& e = *area->GetEngine();
        const int total = TruncToInt(e.GetX1());
        e.SetColumnCount(ToInt(std::max(0LL, static_cast<long long>(total) - value)));
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
