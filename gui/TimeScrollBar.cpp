#include "gui/TimeScrollBar.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>
#include <algorithm>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "module/PFChartModule.h"

CTimeScrollBar::CTimeScrollBar(PFChartWidget* widget) : QAbstractSlider(widget), widget_(widget) {
    setOrientation(Qt::Horizontal);
    setFocusPolicy(Qt::NoFocus);
    setRange(0, 0);
    connect(this, SIGNAL(valueChanged(int)), this, SLOT(OnValueChanged(int)));
}

void CTimeScrollBar::SetQuietly(int minimum, int maximum, int value) {
    quiet_ = true;
    setRange(minimum, std::max(minimum, maximum));
    setValue(value);
    quiet_ = false;
}

void CTimeScrollBar::OnValueChanged(int value) {
    if (quiet_ || !widget_ || !widget_->GetChart()) return;
    for (const boost::shared_ptr<gx::Area>& area : widget_->GetChart()->GetAreas())
        area->GetEngine()->SetFirstColumn(std::max(0, value));
    widget_->UpdateTimeScale();
    widget_->update();
    if (widget_->GetModule()) widget_->GetModule()->SendMainAboutChange();
}

void CTimeScrollBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOptionSlider option;
    option.initFrom(this);
    option.subControls = QStyle::SC_All;
    option.orientation = orientation();
    option.minimum = minimum();
    option.maximum = maximum();
    option.sliderPosition = sliderPosition();
    option.sliderValue = value();
    option.singleStep = singleStep();
    option.pageStep = pageStep();
    style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, this);
}

int CTimeScrollBar::ValueAt(int x) const {
    const int span = maximum() - minimum();
    if (span <= 0 || width() <= 1) return minimum();
    const long long v = minimum() + static_cast<long long>(x) * span / (width() - 1);
    return static_cast<int>(std::max<long long>(minimum(), std::min<long long>(maximum(), v)));
}

void CTimeScrollBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) setValue(ValueAt(event->pos().x()));
}

void CTimeScrollBar::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) setValue(ValueAt(event->pos().x()));
}
