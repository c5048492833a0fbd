// The chart window's tool bar: Zoom In, Zoom Out, the zoom slider and the cross-cursor
// button. Zooming acts on every area at once through the areas' scale engines: each keeps
// the total number of positions, how many are visible and the first visible one.
#pragma once

#include <QWidget>

class QSlider;
class QToolButton;
class PFChartWidget;

namespace pf {
namespace gui {

class ToolBar : public QWidget {
    Q_OBJECT
public:
    static constexpr double kZoomFactor = 1.3;

    explicit ToolBar(PFChartWidget* widget);
    ~ToolBar() override;

    // Zoom In: every area shows visible / 1.3 positions, keeping its right edge; nothing at
    // all happens when an area shows fewer than 6. `record` asks for an undo step.
    void OnBnClickedZoomIn(bool record);
    // Zoom Out: visible * 1.3 positions, at most total + free steps, first not below 0.
    void OnBnClickedZoomOut(bool record);
    // The zoom slider moved: every area shows total - value positions.
    void OnChangeZoom(int value);

    void OnBnClickedCrossCursor();
    void OnBnReleasedCrossCursor();
    void SetCrossCursorToggled(bool on);
    bool IsEnabledCrossCursor() const;
    bool IsCrossCursorToggled() const;
    // Clears the toggled state of the state buttons (the cross cursor).
    void ResetStateButtonList(bool repaint);

    QSlider* GetZoomSlider() const { return slider_; }
    QToolButton* GetZoomInButton() const { return zoomIn_; }
    QToolButton* GetZoomOutButton() const { return zoomOut_; }
    QToolButton* GetCrossCursorButton() const { return cross_; }

private slots:
    void ZoomInClicked();
    void ZoomOutClicked();
    void SliderMoved(int value);
    void CrossClicked();

private:
    // Scroll bar range after a zoom: 0 .. total - visible + free steps.
    void SetScrollRange(int total, int visible, int first, bool setValue);

    PFChartWidget* widget_;
    QToolButton* zoomIn_;
    QToolButton* zoomOut_;
    QSlider* slider_;
    QToolButton* cross_;
};

}  // namespace gui
}  // namespace pf
