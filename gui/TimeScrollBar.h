// The scroll bar under the chart: its value is the first visible position of every area.
#pragma once

#include <QAbstractSlider>

class PFChartWidget;

class CTimeScrollBar : public QAbstractSlider {
    Q_OBJECT
public:
    explicit CTimeScrollBar(PFChartWidget* widget);

    int GetScreenDataPoints() const { return nScreenDataPoints_; }
    void SetScreenDataPoints(int n) { nScreenDataPoints_ = n; }
    // Sets range and value without moving the areas (the caller already did).
    void SetQuietly(int minimum, int maximum, int value);

public slots:
    // Every area's first visible position becomes `value` (0 when negative); the time scale
    // follows, the window repaints and the main window hears "Scale changed".
    void OnValueChanged(int value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    int ValueAt(int x) const;

    PFChartWidget* widget_;
    int nScreenDataPoints_ = -1;
    bool quiet_ = false;
};
