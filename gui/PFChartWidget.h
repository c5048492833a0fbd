// The window of one chart component.
//
// This is the chart window at its beginning: the widget the chart type interfaces list
// and the chart module walks over when prices switch between bid, ask and middle or when
// the dealing day-off states change. It holds no data lines yet, so it counts none, has
// nothing to switch and no indicator captions to add to its title; the chart tree, its
// data sources and everything drawn in the window come with the chart window itself.
#pragma once

#include <QString>
#include <QWidget>

class PFChartWidget : public QWidget {
    Q_OBJECT
public:
    explicit PFChartWidget(QWidget* parent = nullptr);
    ~PFChartWidget() override;

    // Recomputes the window title from the chart's contents and returns it. Without data
    // lines there is nothing to add to the title the window already has.
    QString UpdateTitle();
    // Switches every data line to the price type `typeName` ("Middle", "Bid" or "Ask").
    void ResetType(const QString& typeName);
    // The number of data lines of the price type `typeName`.
    int CountDpaByType(const QString& typeName) const;
};
