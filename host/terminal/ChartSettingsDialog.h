// The terminal's indicator dialog, opened when a chart asks for an indicator's properties
// (3092): the box size and reversal of a Point and Figure or Kagi chart (or Kagi's reversal
// percentage), the brick size of a Renko chart, the price the figures are built from (for
// quotes with high and low) and the two colours of its figures. Apply
// recomputes the chart object in the data core, whose subscribers hear it as they hear new
// data (3009); OK applies and closes. A setting the instrument cannot take is refused with
// the data core's reason shown in the dialog, and nothing changes.
#pragma once

#include <QColor>
#include <QDialog>

#include "host/data/ChartType.h"

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace host {

class DataCore;

namespace terminal {

class ChartSettingsDialog : public QDialog {
    Q_OBJECT
public:
    // `chart` is a chart object's handle; a handle the data core does not know gives a
    // dialog that says so and applies nothing.
    ChartSettingsDialog(DataCore& data, void* chart, QWidget* parent = nullptr);

    void* chart() const { return chart_; }
    // The settings as the fields show them.
    data::ChartSettings settings() const;
    void setSettings(const data::ChartSettings& settings);
    // Recomputes the chart with the fields' settings; false, with the reason shown and in
    // `error`, when the data core refuses them (or the chart is gone).
    bool apply(QString* error = nullptr);

signals:
    void applied(void* chart);

private:

    DataCore& data_;
    void* chart_;
    data::ChartType type_ = data::ChartType::PointAndFigure;
    QDoubleSpinBox* box_ = nullptr;
    QSpinBox* reversal_ = nullptr;
    QDoubleSpinBox* percent_ = nullptr;
    QComboBox* price_ = nullptr;
    QPushButton* risingButton_ = nullptr;
    QPushButton* fallingButton_ = nullptr;
    QColor rising_, falling_;
    QLabel* error_ = nullptr;
};

}  // namespace terminal
}  // namespace host
