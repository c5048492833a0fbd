#include "gui/PFChartWidget.h"

PFChartWidget::PFChartWidget(QWidget* parent) : QWidget(parent) {}

PFChartWidget::~PFChartWidget() = default;

QString PFChartWidget::UpdateTitle() { return windowTitle(); }

void PFChartWidget::ResetType(const QString&) {
    // No data lines to switch.
}

int PFChartWidget::CountDpaByType(const QString&) const { return 0; }
